#include "preferences.h"

#include "imagepane.h"
#include "pictures.h"
#include "preferencesdialog.h"

#include <ondrel/color/colormanager.h>

#include <QSettings>
#include <QStringList>
#include <QThreadPool>

#include <algorithm>
#include <tuple>

namespace Host
{
namespace
{

const char* const kManaged = "settings/colormanagement/colormanagement";
const char* const kDisplayProfile = "settings/colormanagement/displayprofile";
const char* const kDisplayIntent = "settings/colormanagement/displayrenderingintent";
const char* const kThumbnails = "settings/colormanagement/thumbnails";
const char* const kThumbnailFilter = "settings/performance/interpolation/thumbnail";
const char* const kCacheMegabytes = "editor/cachemegabytes";

constexpr int kLookAgain = 5; // milliseconds
constexpr int kHashBytes = 32;

QByteArray defaultProfile()
{
    const auto& hash = Ondrel::DefaultColorProfileHash;
    return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
}

QString oneOf(const QString& text, const QStringList& known)
{
    return known.contains(text) ? text : known.front();
}

} // namespace

PreferenceValues PreferenceValues::load()
{
    const QSettings settings;
    PreferenceValues values;
    values.managesColour = settings.value(kManaged, "Enabled").toString() == "Enabled";
    values.displayProfile = settings.value(kDisplayProfile).toByteArray();
    if (values.displayProfile.size() != kHashBytes)
        values.displayProfile = defaultProfile();
    values.displayIntent = oneOf(settings.value(kDisplayIntent).toString(),
                                 {"Perceptual", "Relative Colorimetric", "Saturation", "Absolute Colorimetric"});
    values.managesThumbnails = settings.value(kThumbnails, "No").toString() != "No";
    values.thumbnailFilter =
        oneOf(settings.value(kThumbnailFilter).toString(), {"Nearest Neighbor", "Bilinear", "Bicubic"});
    bool isNumber = false;
    const int megabytes = settings.value(kCacheMegabytes).toInt(&isNumber);
    if (isNumber)
        values.cacheMegabytes = std::clamp(megabytes, kLeastCacheMegabytes, kMostCacheMegabytes);
    return values;
}

void PreferenceValues::store() const
{
    QSettings settings;
    settings.setValue(kManaged, managesColour ? "Enabled" : "Disabled");
    settings.setValue(kDisplayProfile, displayProfile);
    settings.setValue(kDisplayIntent, displayIntent);
    settings.setValue(kThumbnails, managesThumbnails ? "Yes" : "No");
    settings.setValue(kThumbnailFilter, thumbnailFilter);
    settings.setValue(kCacheMegabytes, cacheMegabytes);
}

bool PreferenceValues::showsAs(const PreferenceValues& other) const
{
    const auto all = [](const PreferenceValues& v) {
        return std::tie(v.managesColour, v.displayProfile, v.displayIntent, v.managesThumbnails, v.thumbnailFilter);
    };
    return all(*this) == all(other);
}

Preferences::Preferences(Pictures& pictures, ImagePane& pane, QWidget& window)
    : QObject(&window)
    , m_pictures(pictures)
    , m_pane(pane)
    , m_window(window)
    , m_device(this)
{
    m_pictures.evaluator().cache().setByteBudget(std::size_t(PreferenceValues::load().cacheMegabytes) << 20);
    m_idle.setInterval(kLookAgain);
    connect(&m_idle, SIGNAL(timeout()), this, SLOT(reloadWhenIdle()));
}

void Preferences::apply(const PreferenceValues& values)
{
    const bool showsOtherwise = !values.showsAs(PreferenceValues::load());
    values.store();
    m_pictures.evaluator().cache().setByteBudget(std::size_t(values.cacheMegabytes) << 20);
    if (!showsOtherwise || m_idle.isActive()) // what waits already reads the settings afterwards
        return;
    setPaused(true);
    m_idle.start();
}

void Preferences::setPaused(bool paused)
{
    m_pictures.setPaused(paused);
    m_pane.renderer().setPaused(paused);
}

// The display's settings must not change under a conversion. Thumbnails of nodes are rendered on the global pool, a few
// pixels each; nothing begins while this waits for them, as they are all begun on this thread.
void Preferences::reloadWhenIdle()
{
    if (m_pictures.evaluator().isBusy() || m_pane.isBusy())
        return;
    m_idle.stop();
    QThreadPool::globalInstance()->waitForDone();
    // An export may run, and must not come to its end with some results of either display.
    m_pictures.evaluator().cache().beginGeneration([] { Ondrel::ColorManager::reload(); });
    setPaused(false);
    m_window.update();
}

void Preferences::openDialog()
{
    auto* const dialog = new PreferencesDialog(*this, &m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

} // namespace Host
