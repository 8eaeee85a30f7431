#pragma once

#include <QString>

class QWidget;

namespace Ondrel
{

// Puts the content of a file in Platform::StylesDirectory(), as ASCII up to the first zero byte, on the widget as its
// style sheet. A file that cannot be opened changes nothing.
void applyStyleSheet(QWidget& widget, const QString& fileName);

} // namespace Ondrel
