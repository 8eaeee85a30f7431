#pragma once

#include <ondrel/ondrel_export.h>

#include <QFrame>
#include <QModelIndex>
#include <QTimer>

class QComboBox;
class QListView;

namespace Ondrel
{

// The frame that shows the list of a ComboBoxBase. Within the double-click interval after it has been shown nothing is
// selected and a release closes nothing: that release belongs to the click that opened it. A press on the frame closes
// it at any time, a release later on. User-interface thread only.
class ONDREL_EXPORT ComboBoxPopup : public QFrame
{
    Q_OBJECT
public:
    // Takes the view into its layout.
    ComboBoxPopup(QComboBox* comboBox, QListView* view);
    QListView* view() const;

Q_SIGNALS:
    // An entry was chosen that is enabled and can be selected.
    void itemSelected(const QModelIndex& modelIndex);

public Q_SLOTS:
    void itemActivatedOrClicked(QModelIndex modelIndex);

protected:
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QComboBox* m_comboBox;
    QListView* m_view;
    QTimer m_blockClickTimer;
};

} // namespace Ondrel
