#pragma once

#include <QImage>
#include <QPalette>
#include <QString>

// Every control in every state, as one picture; `scale` device pixels to a pixel.
QImage stateSheet(const QPalette& palette, double scale);

// Controls in a scene as on a node, at a zoom.
QImage sceneSheet(double zoom);

// The popups of the combo boxes and the colour button, open.
QImage popupSheet(double scale);
