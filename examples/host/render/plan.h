#pragma once

#include "options.h"

#include "project.h"

#include <QStringList>

#include <vector>

// One picture to make.
struct Job {
    int number = 0; // among all inputs of all shards, from 1
    QString input;  // the file of --over; empty without
    QString output;
    Host::NodeId outputNode = 0;
    bool isDone = false; // by an earlier run, to be left out
};

struct Plan {
    Host::Graph graph;
    Host::NodeId overNode = 0;
    QString overField;
    std::vector<Job> jobs;                  // of this shard
    std::vector<Ondrel::ResourceId> stored; // pictures in the store: those of the project and of the command line
    QStringList notes;                      // on the pictures that the command line names, in sentences
    QString error;                          // why it cannot begin, in a sentence
};

Plan makePlan(const Host::Project& project, const Host::NodeTypes& types, const Options& options);

// Whether nodes of a kind take camera RAW files: those that have "RAW" in their name.
bool takesRaw(const Host::NodeType& type);
