#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/widgets/comboboxbase.h>

class QListWidget;

namespace Ondrel
{

// A combo box with a list of texts.
class ONDREL_EXPORT ListComboBox : public ComboBoxBase
{
    Q_OBJECT
public:
    explicit ListComboBox(QWidget* parent);

    // Whether the entry can be chosen. An index outside of the list is ignored.
    void setItemEnabled(int index, bool enabled);

    // Appends a line, 10 pixels high, that cannot be chosen. A style sheet reaches its widget by the name
    // "node_combobox_dropdown_separator".
    void addSeparator();

    // The height of the rows that the popup shows, from the first visible one on; 0 for an empty list.
    int popupVisibleItemHeightSum() const;

    QSize calculatePopupSize() override;
    void showPopup() override;

private:
    QListWidget* m_listWidget;
};

} // namespace Ondrel
