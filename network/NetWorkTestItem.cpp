#include "network/NetWorkTestItem.h"

#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "ui_NetWorkTestItem.h"

#include <QCoreApplication>
#include <QMovie>

#include <limits>

namespace {

enum Tone { GOOD, FAIR, BAD };
constexpr const char *TONE_COLOURS[] = {"signalGood", "signalFair", "signalBad"};

constexpr int INDENT = 3; // of the rows below a heading, in units of spacing
constexpr int CSQ_UNKNOWN = 99;
constexpr int ANY = std::numeric_limits<int>::min();

// How a value from `from` on is shown.
struct Level
{
    const char *word;
    int from;
    Tone tone;
};

constexpr const char *STRONG = QT_TRANSLATE_NOOP("NetWorkTestItem", "Strong");
constexpr const char *MEDIUM = QT_TRANSLATE_NOOP("NetWorkTestItem", "Medium");
constexpr const char *WEAK = QT_TRANSLATE_NOOP("NetWorkTestItem", "Weak");

constexpr Level WIFI_LEVELS[] = {{STRONG, 76, GOOD}, {MEDIUM, 51, FAIR}, {WEAK, ANY, BAD}};
constexpr Level MODEM_LEVELS[] = {{STRONG, CSQ_UNKNOWN + 1, GOOD},
                                  {WEAK, CSQ_UNKNOWN, BAD}, // the modem has no signal to measure
                                  {STRONG, 25, GOOD},
                                  {MEDIUM, 17, FAIR},
                                  {WEAK, ANY, BAD}};
constexpr Level DELAYS[] = {{nullptr, 500, BAD}, {nullptr, 100, FAIR}, {nullptr, ANY, GOOD}};

template <std::size_t Count>
const Level &levelOf(const Level (&levels)[Count], int value)
{
    const Level *level = levels;
    while (value < level->from)
        ++level;
    return *level;
}

const Level &signalLevel(int item, int value)
{
    return item == ITEM_4G_SIGNAL ? levelOf(MODEM_LEVELS, value) : levelOf(WIFI_LEVELS, value);
}

struct Look
{
    QString mark;
    Tone tone;
};

Look lookOf(int item, int state, int value)
{
    switch (state) {
    case TEST_RUNNING:
    case TEST_HEADING:
        return {QString(), GOOD};
    case TEST_PASSED:
        return {QStringLiteral("√"), GOOD};
    case TEST_SIGNAL: {
        const Level &level = signalLevel(item, value);
        return {QCoreApplication::translate("NetWorkTestItem", level.word), level.tone};
    }
    case TEST_DELAY:
        return {QStringLiteral("%1ms").arg(value), levelOf(DELAYS, value).tone};
    default:
        return {QStringLiteral("×"), BAD};
    }
}

// By the state's code, from -1 down.
constexpr const char *REASONS[] = {
    QT_TRANSLATE_NOOP("NetWorkTestItem", "    Get resource file failed!"),
    QT_TRANSLATE_NOOP("NetWorkTestItem", "    Time synchronize failed!"),
    QT_TRANSLATE_NOOP("NetWorkTestItem", "    Certificate download failed!"),
    QT_TRANSLATE_NOOP("NetWorkTestItem", "    Server connection failed!"),
    QT_TRANSLATE_NOOP("NetWorkTestItem", "    Topic subscribe failed!"),
};

QString reasonOf(int state)
{
    if (state >= 0 || state < TEST_NO_TOPIC)
        return {};
    return QCoreApplication::translate("NetWorkTestItem", REASONS[-1 - state]);
}

struct Region
{
    const char *name;
    const char *suffix;
};

constexpr Region REGIONS[] = {
    {"China", QT_TRANSLATE_NOOP("NetWorkTestItem", ":China")},
    {"ASEAN", QT_TRANSLATE_NOOP("NetWorkTestItem", ":ASEAN")},
    {"Europe", QT_TRANSLATE_NOOP("NetWorkTestItem", ":Europe")},
};

QString regionOf(int item, const QString &name)
{
    if (item != ITEM_ETH_CLOUD && item != ITEM_WIFI_CLOUD && item != ITEM_4G_CLOUD)
        return {};
    for (const Region &region : REGIONS) {
        if (name == QLatin1String(region.name))
            return QCoreApplication::translate("NetWorkTestItem", region.suffix);
    }
    return {};
}

bool isHeading(int item)
{
    return item == ITEM_ETH || item == ITEM_WIFI || item == ITEM_4G;
}

bool isFailure(int state, int value)
{
    return state < 0 || state == TEST_FAILED || (state == TEST_DELAY && value == NO_ANSWER_MS);
}

void showIfAny(QLabel *label, const QString &text)
{
    label->setText(text);
    label->setVisible(!text.isEmpty());
}

} // namespace

NetWorkTestItem::NetWorkTestItem(int item, QMovie *running, QWidget *parent)
    : QFrame(parent),
      ui(std::make_unique<Ui::NetWorkTestItem>()),
      m_nItem(item),
      m_pRunning(running),
      m_nState(TEST_RUNNING)
{
    setProperty("heading", isHeading(item)); // for the style sheet
    ui->setupUi(this);
    growLayouts(this);
    setObjectName(QLatin1String(NETWORK_TEST_KEYS[static_cast<std::size_t>(item)]));
    ui->lab_title->setLeastLines(1);
    ui->lab_result->setLeastLines(1);
    ui->lab_solution->setLeastLines(1);
    if (item > ITEM_ETH && !isHeading(item)) {
        QMargins margins = ui->rowGrid->contentsMargins();
        margins.setLeft(spacing(INDENT));
        ui->rowGrid->setContentsMargins(margins);
    }
}

NetWorkTestItem::~NetWorkTestItem() = default;

void NetWorkTestItem::setState(int state, int value)
{
    m_nState = state;
    m_nValue = value;
    retranslate();
}

bool NetWorkTestItem::hasFailed() const
{
    return isFailure(m_nState, m_nValue);
}

void NetWorkTestItem::setTexts(const NetWorkTestText &texts, const QString &region)
{
    m_texts = texts;
    m_sRegion = region;
    showTexts();
}

void NetWorkTestItem::retranslate()
{
    showState();
    showTexts();
}

void NetWorkTestItem::showState()
{
    const Look look = lookOf(m_nItem, m_nState, m_nValue);
    setStyleOnce(ui->lab_state, textColourStyle(QLatin1String(TONE_COLOURS[look.tone])));
    markWidget(ui->lab_state, "judged", !look.mark.isEmpty()); // its colour needs a dark ground
    if (m_nState == TEST_RUNNING)
        ui->lab_state->setMovie(m_pRunning);
    else
        ui->lab_state->setText(look.mark);
}

void NetWorkTestItem::showTexts()
{
    ui->lab_title->setText(m_texts.title + regionOf(m_nItem, m_sRegion));
    QString result;
    if (hasFailed())
        result = m_texts.failure + reasonOf(m_nState);
    else if (m_nState == TEST_PASSED)
        result = m_texts.success;
    showIfAny(ui->lab_result, result);
    const bool advise = lookOf(m_nItem, m_nState, m_nValue).tone == BAD;
    showIfAny(ui->lab_solution, advise ? m_texts.solution : QString());
}
