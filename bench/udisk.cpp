// How long the listing of a full U-disk holds the GUI thread, beside the bare directory listing.
#include "bench/Statistics.h"
#include "resources/Resources.h"
#include "update/DownLoadHmiImage.h"
#include "update/DownLoadHmiPro.h"
#include "update/DownLoadPlcPro.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <dirent.h>

namespace {

constexpr int FILES = 10000;
constexpr int MATCHING = 100;
constexpr int RUNS = 31;
constexpr double LISTING_LIMIT = 3;
constexpr double HOLD_LIMIT_MS = 100;

void fill(const QString &folder)
{
    for (int i = 0; i < FILES; ++i) {
        const bool matches = i % (FILES / MATCHING) == 0;
        QFile file(folder + QStringLiteral("/recording-%1.%2")
                                .arg(i, 5, 10, QLatin1Char('0'))
                                .arg(matches ? QStringLiteral("tmt3") : QStringLiteral("csv")));
        file.open(QIODevice::WriteOnly);
    }
}

int bareListing(const char *folder)
{
    DIR *stream = opendir(folder);
    int count = 0;
    while (readdir(stream) != nullptr)
        ++count;
    closedir(stream);
    return count;
}

// The median of `RUNS` times of `work`, each followed by `after`, which does not count.
double medianOf(
    const std::function<void()> &work, const std::function<void()> &after = [] {})
{
    std::vector<double> times;
    for (int i = 0; i < RUNS; ++i) {
        times.push_back(bench::timed(work));
        after();
    }
    return bench::median(times);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    loadResources();
    const QTemporaryDir folder;
    fill(folder.path());
    const QByteArray path = folder.path().toUtf8();

    CDownloadThread worker;
    DownLoadHmiPro project;
    DownLoadHmiImage image;
    DownLoadPlcPro plc;
    UpdatePage *pages[] = {&project, &image, &plc};
    for (UpdatePage *page : pages) {
        page->setWorker(&worker);
        page->resize(800, 400);
    }

    const double bare = medianOf([&] { bareListing(path.constData()); });
    const double listed =
        medianOf([&] { project.listUdisk(path.toStdString()); }, [&] { project.clearUdisk(); });
    const double held = medianOf(
        [&] {
            for (UpdatePage *page : pages)
                page->listUdisk(path.toStdString());
        },
        [&] {
            for (UpdatePage *page : pages)
                page->clearUdisk();
        });
    bool kept = bench::report("listing 10,000 files", listed, bare, "ms", LISTING_LIMIT);
    kept = bench::report("GUI held by a U-disk", held, HOLD_LIMIT_MS, "ms", 1) && kept;
    return kept ? 0 : 1;
}
