#pragma once

#include <QString>
#include <QStringList>

#include <cstddef>
#include <vector>

// What the command line asks for. Texts that need the project to be understood are kept as they stand.
struct Options {
    struct Setting {
        QString node, field, value;
    };
    struct Input {
        QString node, file;
    };

    QString project;
    std::vector<Setting> settings;
    std::vector<Input> inputs;
    QString overNode, overGlob; // empty without --over
    QString pattern = "{name}-{output}.{ext}";
    QString plugins; // empty: beside the program
    int jobs = 1;
    std::size_t memory = 0; // bytes; 0: no bound
    int shard = 1, shards = 1;
    bool resume = false, dryRun = false, json = false;
};

// Reads the command line. Otherwise the status to exit with, after the help or a complaint on the standard streams.
bool readOptions(int argc, char** argv, Options& options, int& status);
