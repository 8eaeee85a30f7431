#pragma once

#include <QString>
#include <QStringList>

// Lists the OpenCL devices, as chooseDevice names them. Gives an exit status.
int listDevices();

// Turns OpenCL on for "P:D", device D of platform P, or for the first device that there is if the text is empty. False,
// after a message, if there is none.
bool chooseDevice(const QString& device);

// "--opencl" alone stands for "--opencl=": the text after it belongs to it only if it names a device.
QStringList withDeviceValue(QStringList arguments);
