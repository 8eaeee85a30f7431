#pragma once

#include "../../common/cancel.h"
#include "../../host/plugininterface.h"

#include <QCoreApplication>

#include <exception>

namespace Essentials
{

using Examples::isCancelled;
using Ondrel::Image;
using ImagePtr = std::shared_ptr<const Image>;

// The plug-in's sentences: Text::tr("...").
class Text
{
    Q_DECLARE_TR_FUNCTIONS(Essentials)
};

// What keeps a node from doing its work, as a sentence for the user.
class Problem : public std::exception
{
public:
    explicit Problem(const QString& sentence)
        : m_sentence(sentence)
    {
    }
    const QString& sentence() const { return m_sentence; }

private:
    QString m_sentence;
};

// The size of a picture of this full size at a scale: rounded, no side below 1. Pictures that went through a rotation
// may differ by a pixel.
QSize scaledSize(const QSize& fullSize, double scale);

// Throws Problem for a picture of this size that no one can want: above 2^28 pixels, or without any.
void refuseAbsurdSize(const QSize& size);

// A result with one picture.
Host::Result resultOf(const ImagePtr& image, const QSize& fullSize, const QString& output = "image");

// The image as a shared one, with the given profile: most of the library's results carry none.
ImagePtr withProfile(Image&& image, const std::array<unsigned char, 32>& profile);

// What Filter::process() works on.
struct Work {
    ImagePtr image;     // has pixels
    QSize fullSize;     // at scale 1
    QSize fullResult;   // what outputSizes() says about "image"
    double scale;       // of the image
    QVariantMap values; // see values.h
    Ondrel::RunStatus status;
};

// A node that makes one picture, its output "image", of one, its input "image".
class Filter : public Host::NodeBehaviour
{
public:
    Host::Result evaluate(const Host::Request& request) const final;

protected:
    // Null, or any image, if it was cancelled. Throws Problem.
    virtual ImagePtr process(const Work& work) const = 0;
};

// Runs a function that returns a Result, and makes the result's error of a Problem that it throws.
template <class Function>
Host::Result guarded(Function function)
{
    try {
        return function();
    } catch (const Problem& problem) {
        Host::Result result;
        result.error = problem.sentence();
        return result;
    }
}

} // namespace Essentials
