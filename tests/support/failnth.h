#pragma once

// Makes single calls to the system fail, to show that whoever made them copes. Linked into a test program, failnth.cpp
// puts itself before the C library for every shared library in the process: allocation, populated mappings and files.
namespace OndrelTest
{

namespace Call
{
enum Kinds : unsigned int {
    New = 1,     // operator new throws std::bad_alloc
    Malloc = 2,  // malloc, calloc and realloc give null, and so operator new throws too; not for Little CMS, nor
                 // realloc for libtiff, which crash then (2.14 and 4.5)
    Map = 4,     // mmap with MAP_POPULATE is refused
    File = 8,    // open, read, write and close of files, of streams too, report an error; standard streams excepted
    Profile = 16 // what Little CMS makes, opens, saves and writes is refused
};
}

// Whether Call::Malloc has any effect. The sanitizers have an allocator of their own, which must not be bypassed.
bool canFailMalloc();

// From construction to destruction, the `nth` call of the given kinds on this thread fails (the first is 1); with
// Onwards all later ones too. What closes a file has closed it although it fails, as close() does.
class FailNth
{
public:
    enum Mode { Once, Onwards };
    FailNth(unsigned int kinds, int nth, Mode mode);
    ~FailNth();
    FailNth(const FailNth&) = delete;
    FailNth& operator=(const FailNth&) = delete;

    // How many calls have failed so far.
    int failures() const;
};

// Blocks of the C library's heap that are in use in the process; 0 where canFailMalloc() is false.
long heapBlocks();

} // namespace OndrelTest
