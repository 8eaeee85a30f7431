#include <ondrel/widgets/comboboxpopup.h>

#include <QApplication>
#include <QComboBox>
#include <QListView>
#include <QVBoxLayout>

namespace Ondrel
{

ComboBoxPopup::ComboBoxPopup(QComboBox* comboBox, QListView* view)
    : QFrame(comboBox, Qt::Popup) // a child, so that the box's style sheet reaches it
    , m_comboBox(comboBox)
    , m_view(view)
{
    setAttribute(Qt::WA_WindowPropagation);
    setAttribute(Qt::WA_X11NetWmWindowTypeCombo);
    m_blockClickTimer.setSingleShot(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);
    connect(view, SIGNAL(activated(QModelIndex)), this, SLOT(itemActivatedOrClicked(QModelIndex)));
    connect(view, SIGNAL(clicked(QModelIndex)), this, SLOT(itemActivatedOrClicked(QModelIndex)));
}

QListView* ComboBoxPopup::view() const
{
    return m_view;
}

void ComboBoxPopup::itemActivatedOrClicked(QModelIndex modelIndex)
{
    if (m_blockClickTimer.isActive() || !modelIndex.isValid())
        return;
    const Qt::ItemFlags needed = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if ((modelIndex.flags() & needed) == needed)
        Q_EMIT itemSelected(modelIndex);
}

void ComboBoxPopup::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    m_blockClickTimer.start(QApplication::doubleClickInterval());
}

void ComboBoxPopup::mousePressEvent(QMouseEvent*)
{
    m_comboBox->hidePopup();
}

void ComboBoxPopup::mouseReleaseEvent(QMouseEvent*)
{
    if (!m_blockClickTimer.isActive())
        m_comboBox->hidePopup();
}

} // namespace Ondrel
