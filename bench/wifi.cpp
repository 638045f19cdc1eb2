// Measures the Wi-Fi list: refreshing its rows, beside painting the same rows from a plain delegate
// with cached icons, and how long a slow scan holds up the GUI thread.

#include "app/look/OutsideText.h"
#include "app/look/Screen.h"
#include "app/look/WidgetLook.h"
#include "app/MainWin.h"
#include "app/Program.h"
#include "bench/Statistics.h"
#include "network/NetWiFi.h"
#include "platform/sim/Panel.h"
#include "platform/sim/SimProgram.h"

#include <QAbstractButton>
#include <QApplication>
#include <QListWidget>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTabWidget>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

constexpr int RUNS = 41;
constexpr int ACCESS_POINTS = 200;
constexpr double REFRESH_LIMIT = 8;
constexpr double STALL_LIMIT_MS = 100;
constexpr int SCAN_DELAY_MS = 5000;

using List = std::vector<netT::stApInfo_tag>;

void drain()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

List accessPoints()
{
    List list;
    for (int i = 0; i < ACCESS_POINTS; ++i)
        list.push_back({i, 1 + i * 7 % 100, "Network " + std::to_string(i), "", i % 3 * 2});
    return list;
}

// Other levels for a tenth of the list, so that they come to stand elsewhere.
void changeTenth(List &list, int run)
{
    for (std::size_t i = static_cast<std::size_t>(run) % 10; i < list.size(); i += 10)
        list[i].nLevel = 1 + (list[i].nLevel + 40 + run) % 100;
}

// The rows as bare as they can be: a name and a picture that is there already.
class PlainRows : public QStyledItemDelegate
{
public:
    PlainRows(const List &list, int height, QObject *parent)
        : QStyledItemDelegate(parent), m_list(list), m_nHeight(height)
    {
        for (int kind = 1; kind <= 2; ++kind) {
            for (int level = 0; level <= 4; ++level) {
                const QString name = QStringLiteral("wifi%1_%2.png").arg(kind).arg(level);
                m_icons[kind - 1][level] =
                    QPixmap(imagePath(name))
                        .scaledToHeight(height * 3 / 4, Qt::SmoothTransformation);
            }
        }
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        const netT::stApInfo_tag &ap = m_list[static_cast<std::size_t>(index.row())];
        const QPixmap &icon = m_icons[isSecured(ap) ? 1 : 0][(ap.nLevel + 24) / 25];
        painter->drawText(option.rect.adjusted(8, 0, -m_nHeight, 0), Qt::AlignVCenter,
                          shownBytes(ap.sSsid));
        painter->drawPixmap(option.rect.right() - icon.width() - 8,
                            option.rect.center().y() - icon.height() / 2, icon);
    }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return {0, m_nHeight};
    }

private:
    const List &m_list;
    int m_nHeight;
    QPixmap m_icons[2][5];
};

bool measureRefresh(NetWiFi &page)
{
    List list = accessPoints();
    page.setAccessPoints(list);
    drain();
    auto *rows = page.findChild<QListWidget *>(QStringLiteral("list_Wifi"));

    QListWidget plain;
    plain.setItemDelegate(new PlainRows(list, touchHeight(), &plain));
    plain.setUniformItemSizes(true);
    for (int i = 0; i < ACCESS_POINTS; ++i)
        new QListWidgetItem(&plain);
    plain.resize(rows->size());
    plain.setFont(rows->font());
    plain.show();
    drain();

    std::vector<double> refreshMs;
    std::vector<double> paintMs;
    for (int run = 0; run < RUNS; ++run) {
        changeTenth(list, run);
        refreshMs.push_back(bench::timed([&] {
            page.setAccessPoints(list);
            drain();
        }));
        std::stable_sort(list.begin(), list.end(), [](const auto &one, const auto &other) {
            return one.nLevel > other.nLevel;
        });
        paintMs.push_back(bench::timed([&] { plain.viewport()->repaint(); }));
    }
    return bench::report("refresh of " + std::to_string(rows->count()) + " Wi-Fi rows",
                         bench::median(refreshMs), bench::median(paintMs), "ms", REFRESH_LIMIT);
}

// The longest that a timer of the GUI thread is late while a scan takes its time.
bool measureStall(NetWiFi &page)
{
    sim::panel().delay("netT.getAPList", SCAN_DELAY_MS);
    double longest = 0;
    auto last = std::chrono::steady_clock::now();
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, [&] {
        const auto now = std::chrono::steady_clock::now();
        longest = std::max(longest, std::chrono::duration<double, std::milli>(now - last).count());
        last = now;
    });
    beat.start(5);
    std::atomic<bool> done{false};
    std::thread timer([&] {
        UpdataWifiList(&page);
        done = true;
    });
    while (!done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    timer.join();
    drain();
    return bench::report("GUI stall while a scan takes 5 s", longest, STALL_LIMIT_MS, "ms", 1);
}

} // namespace

int main(int argc, char **argv)
{
    const int refused = sim::startFromEnvironment();
    if (refused != 0)
        return refused;
    QApplication application(argc, argv);
    loadAppearance();
    auto *window = new MainWin; // its end would restart the panel
    window->start();
    window->findChild<QAbstractButton *>(QStringLiteral("btn_Net"))->click();
    window->findChild<QTabWidget *>(QStringLiteral("tab_Net"))->setCurrentIndex(1);
    drain();
    auto *page = window->findChild<NetWiFi *>();
    netT::stAllNetInfo_tag record;
    record.sDevName = "wlan0";
    record.sNetType = "WIFI";
    record.sFunction = "enable";
    page->setNetInfo(record);
    drain();
    const bool refresh = measureRefresh(*page);
    const bool stall = measureStall(*page);
    std::fflush(stdout);
    std::_Exit(refresh && stall ? 0 : 1);
}
