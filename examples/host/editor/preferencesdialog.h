#pragma once

#include "deviceselftest.h"

#include <QDialog>

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QSpinBox;

namespace Host
{

class Preferences;
struct PreferenceValues;

// Shows the preferences and applies them by "OK" and "Apply".
class PreferencesDialog : public QDialog
{
    Q_OBJECT
public:
    PreferencesDialog(Preferences& preferences, QWidget* parent);

private Q_SLOTS:
    void press(QAbstractButton* button);
    void showDeviceState();
    void testAgain();

private:
    void addColour(QFormLayout& form, const PreferenceValues& values);
    void addPerformance(QFormLayout& form, const PreferenceValues& values);
    void takeDevices(const std::vector<DeviceInfo>& devices);
    void apply();
    void applyDevice();
    const DeviceInfo* chosenDevice() const; // null for none

    Preferences& m_preferences;
    QCheckBox* m_managed;
    QComboBox* m_profile;
    QComboBox* m_intent;
    QCheckBox* m_managedThumbnails;
    QComboBox* m_thumbnailFilter;
    QSpinBox* m_cache;
    QComboBox* m_device;
    QPushButton* m_testAgain;
    QLabel* m_deviceState;
    std::vector<DeviceInfo> m_devices; // behind the entry for none
    int m_appliedDevice = 0;           // its entry
};

} // namespace Host
