#pragma once

#include <QMenu>

class QActionGroup;

namespace Host
{

class ImagePane;

// What the view compares, marks and proofs.
class ViewMenu : public QMenu
{
    Q_OBJECT
public:
    ViewMenu(ImagePane& pane, QWidget* parent);

private Q_SLOTS:
    void apply();
    void compare(); // by the one that was triggered; the others end

private:
    QAction* addOption(const QString& text, const char* name, const char* shortcut);
    QActionGroup* addProfiles();
    QActionGroup* addIntents();

    ImagePane& m_pane;
    QAction* m_second;
    QAction* m_wipe;
    QAction* m_beside;
    QAction* m_clipping;
    QAction* m_proof;
    QAction* m_gamut;
    QActionGroup* m_profiles;
    QActionGroup* m_intents;
};

} // namespace Host
