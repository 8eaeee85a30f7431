#include "viewmenu.h"

#include "imagepane.h"

#include <ondrel/color/colormanager.h>

#include <QActionGroup>

namespace Host
{

ViewMenu::ViewMenu(ImagePane& pane, QWidget* parent)
    : QMenu(tr("Com&pare and proof"), parent)
    , m_pane(pane)
    , m_second(addOption(tr("&Secondary picture"), "view.second", "S"))
    , m_wipe(addOption(tr("&Wipe between both"), "view.wipe", "W"))
    , m_beside(addOption(tr("Side &by side"), "view.beside", "B"))
    , m_clipping(addOption(tr("Mark &clipping"), "view.clipping", "M"))
    , m_proof(addOption(tr("Soft &proof"), "view.proof", "P"))
    , m_gamut(addOption(tr("Mark colours out of &gamut"), "view.gamut", "Shift+P"))
    , m_profiles(addProfiles())
    , m_intents(addIntents())
{
    m_wipe->setStatusTip(tr("Drag the line, or anywhere with Ctrl."));
    insertSeparator(m_clipping);
    for (const QAction* const action : {m_second, m_wipe, m_beside})
        connect(action, SIGNAL(triggered()), this, SLOT(compare()));
    for (const QAction* const action : {m_clipping, m_proof, m_gamut})
        connect(action, SIGNAL(triggered()), this, SLOT(apply()));
}

QAction* ViewMenu::addOption(const QString& text, const char* name, const char* shortcut)
{
    QAction* const action = addAction(text);
    action->setObjectName(name);
    action->setShortcut(QKeySequence(shortcut));
    action->setCheckable(true);
    return action;
}

QActionGroup* ViewMenu::addProfiles()
{
    QMenu* const menu = addMenu(tr("Proof pro&file"));
    auto* const group = new QActionGroup(this);
    using Profile = Ondrel::ColorManager::ColorProfile;
    std::vector<std::pair<QString, std::array<unsigned char, 32>>> profiles;
    Ondrel::ColorManager::colorProfileNamesAndHashesSorted(profiles, {Profile::RGB, Profile::CMYK},
                                                           {Profile::BuiltIn, Profile::System, Profile::User});
    for (const auto& [name, hash] : profiles) {
        QAction* const action = group->addAction(menu->addAction(name, this, SLOT(apply())));
        action->setCheckable(true);
        action->setData(QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size())));
        action->setObjectName("view.proofProfile." + action->data().toByteArray().toHex());
        action->setChecked(hash == Ondrel::DefaultColorProfileHash);
    }
    return group;
}

// By the numbers of Little CMS.
QActionGroup* ViewMenu::addIntents()
{
    QMenu* const menu = addMenu(tr("Proof &intent"));
    auto* const group = new QActionGroup(this);
    unsigned int number = 0;
    for (const QString& name :
         {tr("Perceptual"), tr("Relative colorimetric"), tr("Saturation"), tr("Absolute colorimetric")}) {
        QAction* const action = group->addAction(menu->addAction(name, this, SLOT(apply())));
        action->setCheckable(true);
        action->setData(number);
        action->setObjectName(QString("view.proofIntent.%1").arg(number));
        action->setChecked(number == 1);
        ++number;
    }
    return group;
}

void ViewMenu::compare()
{
    for (QAction* const action : {m_second, m_wipe, m_beside})
        action->setChecked(action->isChecked() && action == sender());
    apply();
}

void ViewMenu::apply()
{
    ViewOptions options = m_pane.options();
    options.compare = m_second->isChecked()   ? ViewOptions::Second
                      : m_wipe->isChecked()   ? ViewOptions::Wipe
                      : m_beside->isChecked() ? ViewOptions::SideBySide
                                              : ViewOptions::First;
    options.marksClipping = m_clipping->isChecked();
    options.proofs = m_proof->isChecked() && m_profiles->checkedAction();
    options.marksGamut = m_gamut->isChecked();
    if (const QAction* const profile = m_profiles->checkedAction())
        options.proofProfile = profile->data().toByteArray();
    if (const QAction* const intent = m_intents->checkedAction())
        options.proofIntent = intent->data().toUInt();
    m_pane.setOptions(options);
}

} // namespace Host
