#include "shortcutsdialog.h"

#include "keystrokeedit.h"
#include "shortcuts.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace Host
{
namespace
{

constexpr int kPlaceWidth = 220;
enum Column { PlaceColumn, TextColumn, KeysColumn, ColumnCount };

QTableWidgetItem* fixedItem(const QString& text)
{
    auto* const item = new QTableWidgetItem(text); // the table's
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

} // namespace

ShortcutsDialog::ShortcutsDialog(Shortcuts& shortcuts, QWidget* parent)
    : QDialog(parent)
    , m_shortcuts(shortcuts)
    , m_filter(new QLineEdit(this))
    , m_table(new QTableWidget(0, ColumnCount, this))
    , m_keys(new KeyStrokeEdit(this))
    , m_assign(new QPushButton(tr("&Assign"), this))
    , m_clear(new QPushButton(tr("&No shortcut"), this))
    , m_reset(new QPushButton(tr("&Reset"), this))
    , m_conflict(new QLabel(this))
{
    setWindowTitle(tr("Keyboard shortcuts"));
    m_filter->setPlaceholderText(tr("Filter by name, menu or keys"));
    m_filter->setAccessibleName(tr("Filter"));
    m_filter->setObjectName("filter");
    m_filter->setClearButtonEnabled(true);
    m_table->setHorizontalHeaderLabels({tr("Menu"), tr("Command"), tr("Shortcut")});
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setTabKeyNavigation(false);
    m_table->setAccessibleName(tr("Commands"));
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->horizontalHeader()->setSectionResizeMode(TextColumn, QHeaderView::Stretch);
    m_keys->setAccessibleName(tr("New shortcut"));
    m_conflict->setObjectName("conflict");
    m_conflict->setText(" ");
    m_assign->setObjectName("assign");
    m_clear->setObjectName("clear");
    m_reset->setObjectName("reset");

    auto* const row = new QHBoxLayout;
    row->addWidget(m_keys, 1);
    for (QPushButton* const button : {m_assign, m_clear, m_reset}) {
        button->setAutoDefault(false); // Return is a shortcut too
        row->addWidget(button);
    }
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close | QDialogButtonBox::RestoreDefaults, this);
    QPushButton* const resetAll = buttons->button(QDialogButtonBox::RestoreDefaults);
    resetAll->setText(tr("Reset all"));
    resetAll->setObjectName("resetAll");
    for (QAbstractButton* const button : buttons->buttons())
        static_cast<QPushButton*>(button)->setAutoDefault(false);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_filter);
    layout->addWidget(m_table, 1);
    layout->addLayout(row);
    layout->addWidget(m_conflict);
    layout->addWidget(buttons);
    resize(720, 560);

    connect(m_filter, SIGNAL(textChanged(QString)), this, SLOT(filter(QString)));
    connect(m_table, SIGNAL(itemSelectionChanged()), this, SLOT(showChosen()));
    connect(m_keys, SIGNAL(keysChanged()), this, SLOT(checkKeys()));
    connect(m_assign, SIGNAL(clicked()), this, SLOT(assign()));
    connect(m_clear, SIGNAL(clicked()), this, SLOT(clear()));
    connect(m_reset, SIGNAL(clicked()), this, SLOT(reset()));
    connect(resetAll, &QPushButton::clicked, &shortcuts, &Shortcuts::resetAll);
    connect(buttons, SIGNAL(rejected()), this, SLOT(reject()));
    connect(&shortcuts, SIGNAL(changed()), this, SLOT(fill()));
    fill();
    m_table->resizeColumnsToContents();
    m_table->setColumnWidth(PlaceColumn, kPlaceWidth); // those of profiles are long
    m_filter->setFocus();
}

void ShortcutsDialog::fill()
{
    const auto& entries = m_shortcuts.entries();
    m_table->setRowCount(int(entries.size()));
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const Shortcuts::Entry& entry = entries[std::size_t(row)];
        const QList<QKeySequence> keys = entry.action->shortcuts();
        m_table->setItem(row, PlaceColumn, fixedItem(entry.place));
        m_table->setItem(row, TextColumn, fixedItem(entry.text));
        m_table->setItem(row, KeysColumn, fixedItem(QKeySequence::listToString(keys, QKeySequence::NativeText)));
        QFont font = m_table->font();
        font.setBold(keys != entry.initial); // changed
        m_table->item(row, KeysColumn)->setFont(font);
    }
    filter(m_filter->text());
    showChosen();
}

void ShortcutsDialog::filter(const QString& text)
{
    for (int row = 0; row < m_table->rowCount(); ++row) {
        bool fits = false;
        for (int column = 0; column < ColumnCount; ++column)
            fits = fits || m_table->item(row, column)->text().contains(text, Qt::CaseInsensitive);
        m_table->setRowHidden(row, !fits);
    }
}

int ShortcutsDialog::chosen() const
{
    const QList<QTableWidgetItem*> items = m_table->selectedItems();
    return items.isEmpty() ? -1 : items.front()->row();
}

void ShortcutsDialog::showChosen()
{
    const int row = chosen();
    for (QWidget* const widget : std::initializer_list<QWidget*>{m_keys, m_clear, m_reset})
        widget->setEnabled(row >= 0);
    const QList<QKeySequence> keys =
        row < 0 ? QList<QKeySequence>() : m_shortcuts.entries()[std::size_t(row)].action->shortcuts();
    m_keys->setKeys(keys.value(0));
}

void ShortcutsDialog::checkKeys()
{
    const QKeySequence keys = m_keys->keys();
    const int row = chosen();
    const QAction* const action = row < 0 ? nullptr : m_shortcuts.entries()[std::size_t(row)].action;
    m_assign->setEnabled(action && !keys.isEmpty() && !action->shortcuts().contains(keys));
    const Shortcuts::Entry* const holder = action ? m_shortcuts.holder(keys, action) : nullptr;
    m_assign->setText(holder ? tr("&Reassign") : tr("&Assign"));
    m_conflict->setText(holder ? tr("%1 belongs to \"%2\" in %3, which would lose it.")
                                     .arg(keys.toString(QKeySequence::NativeText), holder->text, holder->place)
                               : QString(" "));
}

void ShortcutsDialog::assign()
{
    if (chosen() >= 0)
        m_shortcuts.assign(m_shortcuts.entries()[std::size_t(chosen())].action, {m_keys->keys()});
}

void ShortcutsDialog::clear()
{
    if (chosen() >= 0)
        m_shortcuts.assign(m_shortcuts.entries()[std::size_t(chosen())].action, {});
}

void ShortcutsDialog::reset()
{
    if (chosen() >= 0)
        m_shortcuts.reset(m_shortcuts.entries()[std::size_t(chosen())].action);
}

} // namespace Host
