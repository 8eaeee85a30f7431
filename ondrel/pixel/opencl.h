#pragma once

#include <ondrel/ondrel_export.h>

// The bindings can be asked for a version once a program; the library calls nothing newer than OpenCL 1.1. Their
// exceptions must stay off, as they are by default.
#ifndef CL_HPP_TARGET_OPENCL_VERSION
#define CL_HPP_TARGET_OPENCL_VERSION 120
#endif
#ifndef CL_HPP_MINIMUM_OPENCL_VERSION
#define CL_HPP_MINIMUM_OPENCL_VERSION 110
#endif
#include <CL/opencl.hpp>
#include <QMutex>
#include <memory>
#include <ondrel/core/runstatus.h>
#include <string>
#include <vector>

// The OpenCL device of the process: one device, chosen by the host, with one context and one program that holds all
// kernels of the library (docs/kernels.md). Until setDevice succeeds, OpenCL is off and every operation on pixels runs
// on the processor.
//
// All functions may be called on any thread. One mutex guards everything, and a job on the device holds it from
// beginWork until its token goes: there is one job at a time in the process, and queryDevices, setDevice and disable
// wait for it. It is not recursive: who holds a token must call none of these, nor beginWork again.
//
// Drivers that cannot do what they are asked to are no error: the operation in question runs on the processor. Nothing
// is thrown but std::bad_alloc, which leaves the mutex free.
class ONDREL_EXPORT PixelOpenCL
{
public:
    // The names of a platform's devices, in its own order; none if it has no device. The name of a device that does not
    // tell it is empty.
    struct Platform {
        std::vector<std::string> devices;
    };

    // The one object, made on first use. Never null.
    static PixelOpenCL* instance();

    PixelOpenCL(PixelOpenCL const&) = delete;
    PixelOpenCL& operator=(PixelOpenCL const&) = delete;
    ~PixelOpenCL();

    // Replaces the contents of `platforms` by all platforms of the machine; empty if there is none. The positions of a
    // platform and of a name in it are what setDevice takes. The chosen device stays.
    void queryDevices(std::vector<PixelOpenCL::Platform>& platforms);

    // Makes a context for one device and compiles the kernels for it (with "-cl-mad-enable"), which can take seconds.
    // False, with OpenCL off, if there is no such device or the driver makes no context or program; a device chosen
    // before is given up then too. A program that does not compile counts as made: true, and each operation finds out
    // by itself that its kernel is missing, and runs on the processor. What the compiler says, if anything, is written
    // to the standard output after the line "OpenCL Build Log: ".
    bool setDevice(unsigned int platform, unsigned int device);

    // Borrows the device for one job. While OpenCL is off: a null token, and the arguments are unchanged. Otherwise the
    // arguments get references to context, program and device, and the token holds the mutex. It must be dropped on the
    // thread that got it, after everything made on the device has been released.
    static std::unique_ptr<void, void (*)(void*)> beginWork(cl::Context& context, cl::Program& program,
                                                            cl::Device& device);

    // What a token calls when it is dropped; not to be called otherwise.
    static void endWork(void* token);

    // Gives the device up and turns OpenCL off. The second form is for those who hold the mutex, that is a token. A
    // device that is still held when the process ends is released then; some drivers do not bear that, and a host does
    // well to call disable() before it leaves main().
    void disable();
    void disableWhileHaveLock();

private:
    PixelOpenCL();
    bool openDevice(unsigned int platform, unsigned int number);
    void build();
    static void releaseAtExit();

    QMutex mutex; // guards all below
    bool enabled = false;
    cl::Context context;
    cl::Program program;
    cl::Device device; // the handle of a root device, which is not counted
};

// Runs a kernel with one work item a pixel over an output of `sampleCount` 16-bit samples, four a pixel, in slices of
// 16384 work items, and waits for each: no slice is long enough to stall a display, and a job can be stopped between
// two. The work items are the pixels rounded up to a multiple of 32, and 32 more where they are one already (a kernel
// must return where it is out of range); full slices run in groups of 32, the rest in groups that the driver chooses.
// get_global_id(0) goes on from slice to slice.
//
// True when all slices ran. False as soon as the word of `status` is 1 after a slice, the last one included, or when
// the driver refuses a slice; its error number is then written to the standard output as a line. The arguments of the
// kernel must be set. The caller holds the token of PixelOpenCL::beginWork.
ONDREL_EXPORT bool RunIncrementalKernel(cl::CommandQueue& queue, cl::Kernel& kernel, unsigned int sampleCount,
                                        Ondrel::RunStatus const& status);
