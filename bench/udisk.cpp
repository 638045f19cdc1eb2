// How long the listing of a full U-disk holds the GUI thread, beside the bare directory listing.
#include "bench/Statistics.h"
#include "resources/Resources.h"
#include "update/CDownloadThread.h"
#include "update/DownLoadHmiImage.h"
#include "update/DownLoadHmiPro.h"
#include "update/DownLoadPlcPro.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
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
    if (stream == nullptr)
        return -1;
    int count = 0;
    while (readdir(stream) != nullptr) // NOLINT(concurrency-mt-unsafe): our own stream
        ++count;
    closedir(stream);
    return count;
}

// The times of `RUNS` runs of `work`, each followed by `after`, which does not count.
std::vector<double> timesOf(
    const std::function<void()> &work, const std::function<void()> &after = [] {})
{
    std::vector<double> times;
    for (int i = 0; i < RUNS; ++i) {
        times.push_back(bench::timed(work));
        after();
    }
    return times;
}

std::vector<double> listOn(const std::vector<UpdatePage *> &pages, const std::string &folder)
{
    return timesOf(
        [&] {
            for (UpdatePage *page : pages)
                page->listUdisk(folder);
        },
        [&] {
            for (UpdatePage *page : pages)
                page->clearUdisk();
        });
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    loadResources();
    const QTemporaryDir folder;
    fill(folder.path());
    const std::string path = folder.path().toStdString();

    CDownloadThread worker;
    DownLoadHmiPro project;
    DownLoadHmiImage image;
    DownLoadPlcPro plc;
    const std::vector<UpdatePage *> pages = {&project, &image, &plc};
    for (UpdatePage *page : pages) {
        page->setWorker(&worker);
        page->resize(800, 400);
    }

    const double bare = bench::median(timesOf([&] { bareListing(path.c_str()); }));
    const double listed = bench::median(listOn({&project}, path));
    const std::vector<double> held = listOn(pages, path);
    const double longest = *std::max_element(held.begin(), held.end());
    bool kept = bench::report("listing 10,000 files", listed, bare, "ms", LISTING_LIMIT);
    kept = bench::report("GUI held by a U-disk, at most", longest, HOLD_LIMIT_MS, "ms", 1) && kept;
    return kept ? 0 : 1;
}
