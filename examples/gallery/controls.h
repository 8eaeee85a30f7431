#pragma once

#include <QPalette>
#include <QSize>
#include <QString>
#include <QWidget>

#include <functional>
#include <vector>

// A control of the library, ready to be shown.
struct Control {
    QString name;
    QSize size;
    std::function<QWidget*(QWidget* parent)> make;
};
std::vector<Control> allControls();

// Something that a user does to a control, or an application. `apply` is called when the control is visible.
struct State {
    QString name;
    std::function<void(QWidget*)> apply;
};
std::vector<State> allStates();

// The colours of a node, and light ones for docks.
QPalette darkPalette();
QPalette lightPalette();
