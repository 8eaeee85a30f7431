#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <utility>
#include <vector>

using ProfileHash = std::array<unsigned char, 32>;

// The names and hashes of all profiles that the library knows, by name.
std::vector<std::pair<QString, ProfileHash>> allProfiles();

// The name of a profile, "none" if it is unknown.
QString profileName(const ProfileHash& hash);

// The hash of what the command line names: a listed name, an ICC file, "embedded" (also the empty text) or "none". A
// file is registered for the life of the process only. False if there is no such thing.
bool findProfile(const QString& text, ProfileHash& hash);

QByteArray toByteArray(const ProfileHash& hash);
