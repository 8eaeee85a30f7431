#include "preferencesdialog.h"

#include "preferences.h"

#include <ondrel/color/colormanager.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace Host
{
namespace
{

QFormLayout* addGroup(QVBoxLayout& layout, const QString& title)
{
    auto* const group = new QGroupBox(title);
    auto* const form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout.addWidget(group);
    return form;
}

// By the data of entries.
void chooseData(QComboBox& box, const QVariant& data, const QVariant& otherwise = QVariant())
{
    const int index = box.findData(data);
    box.setCurrentIndex(std::max(0, index >= 0 ? index : box.findData(otherwise)));
}

// Names of profiles may be long; the dialog is not to grow with them.
void limitWidth(QComboBox& box)
{
    box.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box.setMinimumContentsLength(28);
}

} // namespace

PreferencesDialog::PreferencesDialog(Preferences& preferences, QWidget* parent)
    : QDialog(parent)
    , m_preferences(preferences)
    , m_managed(new QCheckBox(tr("&Manage colours for the display"), this))
    , m_profile(new QComboBox(this))
    , m_intent(new QComboBox(this))
    , m_managedThumbnails(new QCheckBox(tr("Manage colours in &thumbnails too"), this))
    , m_thumbnailFilter(new QComboBox(this))
    , m_cache(new QSpinBox(this))
    , m_device(new QComboBox(this))
    , m_testAgain(new QPushButton(tr("T&est again"), this))
    , m_deviceState(new QLabel(this))
{
    setWindowTitle(tr("Preferences"));
    const PreferenceValues values = PreferenceValues::load();
    auto* const layout = new QVBoxLayout(this);
    addColour(*addGroup(*layout, tr("Colour")), values);
    addPerformance(*addGroup(*layout, tr("Performance")), values);
    auto* const buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel, this);
    layout->addWidget(buttons);
    connect(buttons, SIGNAL(clicked(QAbstractButton*)), this, SLOT(press(QAbstractButton*)));
    connect(&preferences.device(), SIGNAL(stateChanged()), this, SLOT(showDeviceState()));
    showDeviceState();
    preferences.device().selfTest().list(
        [self = QPointer<PreferencesDialog>(this)](const std::vector<DeviceInfo>& devices) {
            if (self)
                self->takeDevices(devices);
        });
}

void PreferencesDialog::addColour(QFormLayout& form, const PreferenceValues& values)
{
    using Profile = Ondrel::ColorManager::ColorProfile;
    std::vector<std::pair<QString, std::array<unsigned char, 32>>> profiles;
    Ondrel::ColorManager::colorProfileNamesAndHashesSorted(profiles, {Profile::RGB},
                                                           {Profile::BuiltIn, Profile::System, Profile::User});
    for (const auto& [name, hash] : profiles)
        m_profile->addItem(name, QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size())));
    m_intent->addItem(tr("Perceptual"), "Perceptual");
    m_intent->addItem(tr("Relative colorimetric"), "Relative Colorimetric");
    m_intent->addItem(tr("Saturation"), "Saturation");
    m_intent->addItem(tr("Absolute colorimetric"), "Absolute Colorimetric");
    m_managed->setChecked(values.managesColour);
    m_managed->setObjectName("managed");
    m_profile->setObjectName("profile");
    m_intent->setObjectName("intent");
    m_managedThumbnails->setObjectName("managedThumbnails");
    const auto& standard = Ondrel::DefaultColorProfileHash; // which the library takes for an unknown one
    chooseData(*m_profile, values.displayProfile,
               QByteArray(reinterpret_cast<const char*>(standard.data()), int(standard.size())));
    chooseData(*m_intent, values.displayIntent);
    m_managedThumbnails->setChecked(values.managesThumbnails);
    limitWidth(*m_profile);
    form.addRow(m_managed);
    form.addRow(tr("&Display profile"), m_profile);
    form.addRow(tr("Rendering &intent"), m_intent);
    form.addRow(m_managedThumbnails);
    for (QWidget* const widget : {static_cast<QWidget*>(m_profile), static_cast<QWidget*>(m_intent),
                                  static_cast<QWidget*>(m_managedThumbnails)}) {
        widget->setEnabled(values.managesColour);
        connect(m_managed, SIGNAL(toggled(bool)), widget, SLOT(setEnabled(bool)));
    }
}

void PreferencesDialog::addPerformance(QFormLayout& form, const PreferenceValues& values)
{
    m_thumbnailFilter->addItem(tr("Nearest neighbour (fast)"), "Nearest Neighbor");
    m_thumbnailFilter->addItem(tr("Bilinear"), "Bilinear");
    m_thumbnailFilter->addItem(tr("Bicubic"), "Bicubic");
    m_thumbnailFilter->setObjectName("thumbnailFilter");
    chooseData(*m_thumbnailFilter, values.thumbnailFilter);
    m_cache->setRange(kLeastCacheMegabytes, kMostCacheMegabytes);
    m_cache->setSingleStep(256);
    m_cache->setSuffix(tr(" MB"));
    m_cache->setValue(values.cacheMegabytes);
    m_cache->setObjectName("cache");
    m_device->addItem(tr("None: compute on the processor"));
    m_device->setObjectName("device");
    m_device->setEnabled(false); // until the devices are known
    limitWidth(*m_device);
    m_deviceState->setObjectName("deviceState");
    m_deviceState->setWordWrap(true);
    m_deviceState->setMinimumHeight(2 * m_deviceState->fontMetrics().lineSpacing()); // a longer sentence may come
    m_deviceState->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    form.addRow(tr("Scaling of t&humbnails"), m_thumbnailFilter);
    form.addRow(tr("Memory for &results"), m_cache);
    m_testAgain->setObjectName("testAgain");
    m_testAgain->setAutoDefault(false);
    m_testAgain->setEnabled(false);
    connect(m_testAgain, SIGNAL(clicked()), this, SLOT(testAgain()));
    connect(m_device, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this](int index) { m_testAgain->setEnabled(index > 0); });
    auto* const row = new QHBoxLayout;
    row->addWidget(m_device, 1);
    row->addWidget(m_testAgain);
    auto* const label = new QLabel(tr("&OpenCL device"), this);
    label->setBuddy(m_device);
    form.addRow(label, row);
    form.addRow(QString(), m_deviceState);
}

void PreferencesDialog::takeDevices(const std::vector<DeviceInfo>& devices)
{
    m_devices = devices;
    for (const DeviceInfo& device : devices) {
        m_device->addItem(device.name);
        m_device->setItemData(m_device->count() - 1, tr("Driver %1").arg(device.driver), Qt::ToolTipRole);
        if (m_device->currentIndex() == 0 && device.name == m_preferences.device().kept())
            m_device->setCurrentIndex(m_device->count() - 1);
    }
    m_device->setEnabled(true);
    m_appliedDevice = m_device->currentIndex();
}

const DeviceInfo* PreferencesDialog::chosenDevice() const
{
    const int index = m_device->currentIndex();
    return index > 0 ? &m_devices[std::size_t(index) - 1] : nullptr;
}

void PreferencesDialog::testAgain()
{
    if (!chosenDevice())
        return;
    DeviceSelfTest::forget(*chosenDevice());
    m_appliedDevice = m_device->currentIndex();
    m_preferences.device().choose(*chosenDevice());
}

void PreferencesDialog::showDeviceState()
{
    m_deviceState->setText(m_preferences.device().state());
}

void PreferencesDialog::press(QAbstractButton* button)
{
    const auto role = static_cast<QDialogButtonBox*>(sender())->standardButton(button);
    if (role != QDialogButtonBox::Cancel)
        apply();
    if (role == QDialogButtonBox::Ok)
        accept();
    else if (role == QDialogButtonBox::Cancel)
        reject();
}

void PreferencesDialog::apply()
{
    PreferenceValues values;
    values.managesColour = m_managed->isChecked();
    values.displayProfile = m_profile->currentData().toByteArray();
    values.displayIntent = m_intent->currentData().toString();
    values.managesThumbnails = m_managedThumbnails->isChecked();
    values.thumbnailFilter = m_thumbnailFilter->currentData().toString();
    values.cacheMegabytes = m_cache->value();
    m_preferences.apply(values);
    applyDevice();
}

// A device that is not there just now stays chosen, unless the user chooses another.
void PreferencesDialog::applyDevice()
{
    if (m_device->currentIndex() == m_appliedDevice)
        return;
    m_appliedDevice = m_device->currentIndex();
    if (chosenDevice())
        m_preferences.device().choose(*chosenDevice());
    else
        m_preferences.device().chooseNone();
}

} // namespace Host
