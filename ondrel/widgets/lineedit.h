#pragma once

#include <ondrel/ondrel_export.h>

#include <QLineEdit>

namespace Ondrel
{

// A line edit with round corners, styled by "lineedit.css" in Platform::StylesDirectory() where that exists.
class ONDREL_EXPORT LineEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit LineEdit(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace Ondrel
