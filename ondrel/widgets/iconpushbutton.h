#pragma once

#include <ondrel/ondrel_export.h>

#include <QPushButton>

#include <memory>

namespace Ondrel
{

// A button drawn from SVG icons. Where an icon file has "#000000" it takes the palette's button text colour, or a grey
// when the button is disabled. A file that cannot be opened leaves the button without icon. A name that is no absolute
// path is looked up in Platform::IconsDirectory(). Its accessible name is that of the file, in words, until another is
// set.
class ONDREL_EXPORT IconPushButton : public QPushButton
{
    Q_OBJECT
public:
    enum Bevel {
        BevelStyle = 0, // the style's own button
        BevelDrawn = 1, // a flat bevel in the colours of a node
        BevelNone = 2   // the icon alone
    };

    IconPushButton(const QString& iconFile, QWidget* parent);
    ~IconPushButton() override;

    // Makes the button checkable, with an icon for either state.
    void setCheckableIcons(const QString& checkedIcon, const QString& uncheckedIcon);
    void setBevel(Bevel bevel);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Icons;

    void paintBevel(QPainter& painter) const;

    std::unique_ptr<Icons> m_icons;
    Bevel m_bevel = BevelStyle;
};

} // namespace Ondrel
