#pragma once

namespace Ondrel
{

// The caller of an export, who hears of each row and may stop it.
class ExportProgress
{
public:
    using Callback = bool (*)(int percent, void* userData);

    ExportProgress(Callback callback, void* userData, unsigned int height)
        : callback(callback)
        , userData(userData)
        , height(height)
    {
    }

    // To be called when a row has been written. False to stop, and from then on.
    bool rowWritten(unsigned int row)
    {
        if (callback && !stop)
            stop = !callback(int(double(row) / double(height) * 100.0), userData);
        return !stop;
    }
    bool stopped() const { return stop; }

private:
    Callback callback;
    void* userData;
    unsigned int height;
    bool stop = false;
};

} // namespace Ondrel
