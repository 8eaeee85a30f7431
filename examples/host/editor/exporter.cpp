#include "exporter.h"

#include "resultcache.h"
#include "stopword.h"

#include <ondrel/widgets/pushbutton.h>

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

namespace Host
{

Exporter::Exporter(const NodeTypes& types, ResultCache& cache, QWidget* parent)
    : QWidget(parent)
    , m_types(types)
    , m_cache(cache)
    , m_name(new QLabel(this))
    , m_bar(new QProgressBar(this))
{
    auto* const button = new Ondrel::PushButton(tr("Cancel"), this);
    button->setObjectName("cancelExport");
    m_bar->setAccessibleName(tr("Export"));
    m_bar->setMaximumWidth(160);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_name);
    layout->addWidget(m_bar);
    layout->addWidget(button);
    connect(button, SIGNAL(clicked()), this, SLOT(cancel()));
    hide();
}

Exporter::~Exporter()
{
    m_waiting.clear();
    cancel();
}

void Exporter::add(const ExportOrder& order)
{
    m_waiting.push_back(order);
    if (m_running)
        showState();
    else
        start();
}

void Exporter::cancel()
{
    if (!m_running)
        return;
    m_running->cancelled = true;
    stop(m_running->word);
}

void Exporter::showState()
{
    setVisible(m_running != nullptr);
    if (!m_running)
        return;
    const QString name = QFileInfo(m_running->order.file).fileName();
    m_name->setText(m_waiting.empty() ? name : tr("%1 and %2 more").arg(name, QString::number(m_waiting.size())));
}

void Exporter::start()
{
    m_running.reset();
    if (!m_waiting.empty()) {
        m_running = std::make_shared<Job>();
        m_running->order = m_waiting.front();
        m_waiting.pop_front();
        m_bar->setRange(0, 0); // how long computing takes is not known; writing tells how far it is
    }
    showState();
    if (!m_running)
        return;
    const auto write = [this, job = m_running]() -> std::function<void()> {
        const QString error = written(*job);
        return [this, job, error] { finish(*job, error); };
    };
    m_worker.run(write, [this, job = m_running](const QString& reason) { finish(*job, reason); });
}

QString Exporter::written(Job& job)
{
    const Target target{job.order.node, QString(), 1};
    const Outcome outcome = evaluate(job.order.graph, m_types, target, m_cache, Ondrel::RunStatus{&job.word});
    if (job.cancelled || outcome.cancelled)
        return QString();
    const QString reason = whyNotExport(job.order.graph, outcome);
    if (!reason.isEmpty())
        return reason;
    const auto progress = [this, &job](int percent) {
        QMetaObject::invokeMethod(
            &m_worker,
            [this, percent] {
                m_bar->setRange(0, 100);
                m_bar->setValue(percent);
            },
            Qt::QueuedConnection);
        return !job.cancelled;
    };
    return exportPicture(*outcome.picture.image, job.order.format, job.order.values, job.order.file, progress).error;
}

void Exporter::finish(const Job& job, const QString& error)
{
    const QString file = job.order.file;
    const bool cancelled = job.cancelled;
    start();
    Q_EMIT finished(file, cancelled && error.isEmpty() ? tr("The export was cancelled.") : error);
}

} // namespace Host
