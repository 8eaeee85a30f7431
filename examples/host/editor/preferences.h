#pragma once

#include "devicechoice.h"

#include <QByteArray>
#include <QTimer>

namespace Host
{

class ImagePane;
class Pictures;

// What the settings say, as far as the preferences change it. What is missing or makes no sense has its default.
struct PreferenceValues {
    bool managesColour = true;
    QByteArray displayProfile; // its hash
    QString displayIntent;     // as the setting names it
    bool managesThumbnails = false;
    QString thumbnailFilter; // as the setting names it
    int cacheMegabytes = 1024;

    static PreferenceValues load();
    void store() const;
    bool showsAs(const PreferenceValues& other) const; // all is shown the same
};

inline constexpr int kLeastCacheMegabytes = 64, kMostCacheMegabytes = 1 << 20;

// Makes the preferences hold. User-interface thread only.
class Preferences : public QObject
{
    Q_OBJECT
public:
    Preferences(Pictures& pictures, ImagePane& pane, QWidget& window);

    DeviceChoice& device() { return m_device; }
    // Stores them. The cache has its budget at once. If pictures are to be shown otherwise, all work for the screen
    // comes to its end, the library reads the settings anew, and everything is rendered again.
    void apply(const PreferenceValues& values);
    bool isBusy() const { return m_idle.isActive() || m_device.isBusy(); }

public Q_SLOTS:
    void openDialog();

private Q_SLOTS:
    void reloadWhenIdle();

private:
    void setPaused(bool paused);

    Pictures& m_pictures;
    ImagePane& m_pane;
    QWidget& m_window;
    DeviceChoice m_device;
    QTimer m_idle; // looks whether the work has come to its end
};

} // namespace Host
