#include "machine/Version.h"

#include "app/look/FingerScroll.h"
#include "app/look/OutsideText.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "machine/VersionQuery.h"

#include <QHeaderView>
#include <QSysInfo>
#include <QTreeWidget>
#include <QVBoxLayout>

Version::Version(QWidget *parent) : QWidget(parent), m_query(std::make_shared<VersionQuery>())
{
    connect(m_query.get(), &VersionQuery::answered, this, &Version::slot_Answered,
            Qt::QueuedConnection);
}

Version::~Version() = default;

void Version::retranslate()
{
    setStyleWhenSeen(this, versionStyle());
    if (m_pList != nullptr)
        showRows();
}

void Version::showEvent(QShowEvent *event)
{
    if (m_pList == nullptr)
        makeList();
    ask();
    showRows();
    QWidget::showEvent(event);
}

void Version::makeList()
{
    m_pList = new QTreeWidget;
    m_pList->setObjectName(QStringLiteral("list_Version"));
    m_pList->setColumnCount(2);
    m_pList->setHeaderHidden(true);
    m_pList->header()->setSectionResizeMode(QHeaderView::Stretch);
    m_pList->setRootIsDecorated(false);
    m_pList->setWordWrap(true);
    m_pList->setSelectionMode(QAbstractItemView::NoSelection);
    m_pList->setFocusPolicy(Qt::NoFocus);
    m_pList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    new FingerScroll(m_pList);
    auto *pageLayout = new QVBoxLayout(this);
    pageLayout->setContentsMargins(4, 4, 4, 4);
    pageLayout->addWidget(m_pList);
    growLayouts(this); // the tab grew its layouts before this one was made
}

// One question at a time, however often the page is shown.
void Version::ask()
{
    if (m_service != Service::Asked)
        m_service = m_query->ask() ? Service::Asked : Service::NotAsked;
}

void Version::slot_Answered()
{
    VersionQuery::Answer answer = m_query->answer();
    m_service = answer ? Service::Answered : Service::Silent;
    m_entries = std::move(answer).value_or(std::vector<dsl::VersionEntry_T>());
    showRows();
}

void Version::showRows()
{
    m_pList->clear();
    addRow(tr("Program"), QStringLiteral(SYSSET_VERSION));
    addRow(tr("Build"), QStringLiteral(SYSSET_BUILD));
    addRow(QStringLiteral("Qt"), QString::fromLatin1(qVersion()));
    addRow(tr("Kernel"), QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion());
    for (const dsl::VersionEntry_T &entry : m_entries)
        addRow(shownBytes(entry.name), shownBytes(entry.version));
    const QString state = serviceState();
    if (!state.isEmpty())
        addRow(tr("Other software"), state);
}

void Version::addRow(const QString &name, const QString &version)
{
    m_pList->addTopLevelItem(new QTreeWidgetItem({name, version}));
}

// The row in place of the service's own; empty if these are there.
QString Version::serviceState() const
{
    switch (m_service) {
    case Service::Asked:
        return m_entries.empty() ? tr("Reading...") : QString();
    case Service::Silent:
        return tr("No answer. Please open this page again.");
    case Service::NotAsked:
        return tr("The panel is busy. Please open this page again.");
    case Service::Answered:
        break;
    }
    return {};
}
