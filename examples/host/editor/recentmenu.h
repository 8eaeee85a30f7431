#pragma once

#include <QMenu>

namespace Host
{

// The projects that were opened or saved last, the newest first, kept in the settings.
class RecentMenu : public QMenu
{
    Q_OBJECT
public:
    explicit RecentMenu(QWidget* parent);
    void add(const QString& file);

Q_SIGNALS:
    void chosen(QString file);

private Q_SLOTS:
    void fill();
};

} // namespace Host
