#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/nodes/fieldbase.h>

#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <vector>

class QGraphicsProxyWidget;

namespace Ondrel
{

class ComboBoxBase;

// A row with a label and a combo box. Its value is the text of the current item: it survives a change of the order of
// the choices, and does not survive that one is renamed.
class ONDREL_EXPORT ComboBoxInputField : public InputField
{
    Q_OBJECT
public:
    enum DisplayStyle {
        List = 0,      // of texts
        Thumbnails = 1 // a grid of pictures, which the owner renders: see thumbnailsRequested()
    };

    // In a list a choice "--" is a separator: it has an index, and cannot be chosen. An `initial` index out of range
    // leaves the first item.
    ComboBoxInputField(QString name, QGraphicsItem* parent, const QString& displayName, const QStringList& choices,
                       int initial, DisplayStyle style);
    ~ComboBoxInputField() override;

    // Replaces all items and makes the first one current; "--" is an item as any other here. Emits nothing.
    void setChoices(const QStringList& choices);

    // Emits currentIndexChanged() on a change. An index out of range is ignored.
    void setCurrentIndex(int index);
    int currentIndex() const; // -1 without items

    // Selects the first item with exactly this text, if there is one. Emits nothing.
    void setCurrentText(QString text);
    QString currentText() const;

    // Whether the first item with exactly this text can be chosen. Lists only.
    void setItemEnabled(const QString& text, bool enabled);

    // A rendered thumbnail, or a null pointer for one that could not be rendered. Thumbnails only; others ignore it.
    void setRequestedThumbnail(unsigned int index, const std::shared_ptr<const Image>& image);

    // The text of each item, empty for a separator.
    std::vector<QVariant> values() const;

    float minWidth() const override;
    float minHeight() const override;
    void addedToScene() override;
    void sizeChanged(float width, float height, float labelWidth) override;

Q_SIGNALS:
    void currentIndexChanged(int value);

    // The popup opens: the owner is asked for a picture of each of values(), by setRequestedThumbnail().
    void thumbnailsRequested(ComboBoxInputField* comboBoxInputField);

public Q_SLOTS:
    void notifyCurrentIndexChanged(int index); // of the widget
    void comboBoxThumbnailsRequested();        // by the widget

private:
    void addChoice(const QString& choice);
    int indexOf(const QString& text) const; // -1 if no item has it

    DisplayStyle m_displayStyle;
    ComboBoxBase* m_widget;
    QGraphicsProxyWidget* m_proxy = nullptr;
};

} // namespace Ondrel
