// Uses one function of each folder, so that a missing symbol or dependency shows at link time.

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/core/image.h>
#include <ondrel/core/platform.h>
#include <ondrel/core/xml.h>
#include <ondrel/pixel/opencl.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/work/backgroundworkqueue.h>

#include <QApplication>
#include <QFile>

#include <cstdio>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const Ondrel::PrecisionSlider slider("Size", "0", "9", "5", Ondrel::PrecisionSlider::Integer,
                                         Ondrel::PrecisionSlider::Range, nullptr);
    // Put beside the program by ondrel_deploy_data().
    const bool needsData = QCoreApplication::arguments().contains("--with-data");
    const bool data = !needsData || (QFile::exists(Ondrel::Platform::IconsDirectory() + "node_loading.svg") &&
                                     QFile::exists(Ondrel::Platform::StylesDirectory() + "slider.css"));
    Ondrel::Image image(40, 30);
    image.Fill(65535, 0, 0, 65535);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    const Ondrel::Image half = Scale(image, 20, 15, Ondrel::FilterMethod::Bilinear);
    const QImage shown = Ondrel::ColorTransformer::toQImage(half, false);
    Ondrel::ResourceId id;
    const bool stored = ResourceEngine::Get().AddImageBuffer(half, id);
    const BackgroundWorkQueue queue(nullptr);
    // The bindings in the header call the OpenCL loader themselves.
    cl::Context context;
    cl::Program program;
    cl::Device device;
    const bool openclIsOff = !PixelOpenCL::beginWork(context, program, device) && !context();
    const bool ok = openclIsOff && stored && data && slider.valueAsInt64() == 5 && shown.width() == 20 &&
                    shown.pixel(3, 3) == 0xFFFF0000u && !queue.isWorking() &&
                    Ondrel::AttributeAsGradient(QDomNode(), "none").isEmpty() &&
                    !Ondrel::ColorManager::copyColorProfileDataByHash(image.colorProfile).empty();
    std::puts(ok ? "consumer: ok" : "consumer: failed");
    return ok ? 0 : 1;
}
