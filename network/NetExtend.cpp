#include "network/NetExtend.h"

#include "app/look/Screen.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "network/NetWorkTestUi.h"
#include "network/ServiceTimeouts.h"
#include "platform/net.h"
#include "ui_NetExtend.h"

#include <algorithm>
#include <array>

namespace {

constexpr int WIDEST = 8;                           // of the controls, in heights of a touch
constexpr std::array KINDS = {"ETH", "WIFI", "4G"}; // by the list's index

std::atomic<bool> s_bAnswered{false}; // for the whole process

} // namespace

NetExtend::NetExtend(QWidget *parent)
    : QWidget(parent), ui(std::make_unique<Ui::NetExtend>()), m_pDiagnosis(new NetWorkTestUi(this))
{
    ui->setupUi(this);
    const int touch = touchHeight();
    for (QWidget *control : std::initializer_list<QWidget *>{ui->btn_check, ui->combox}) {
        control->setMinimumHeight(touch);
        control->setMaximumWidth(WIDEST * touch);
    }
    for (WrapLabel *hint : {ui->lab_DiagHint, ui->lab_MethodHint}) {
        hint->setLeastLines(1);
        hint->setMaximumWidth(WIDEST * touch);
    }
    connect(ui->btn_check, &QPushButton::clicked, this, &NetExtend::slot_ButtonPressed);
    connect(ui->combox, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &NetExtend::slot_comboxChange);
}

NetExtend::~NetExtend() = default;

void NetExtend::retranslate()
{
    ui->retranslateUi(this);
    setStyleWhenSeen(this, extendStyle());
}

void NetExtend::refreshPriority()
{
    if (s_bAnswered)
        return;
    const int choices = m_nChoices;
    std::string kind;
    if (netT::getDevPriority(kind, true, NET_SERVICE_TIMEOUT_MS) < 0 || kind.empty())
        return;
    if (s_bAnswered.exchange(true))
        return;
    const auto show = [this, kind, choices] {
        if (choices == m_nChoices) // the answer is older than a choice otherwise
            showPriority(kind);
    };
    QMetaObject::invokeMethod(this, show, Qt::QueuedConnection);
}

void NetExtend::showPriority(const std::string &kind)
{
    const auto found = std::find(KINDS.begin(), KINDS.end(), kind);
    if (found != KINDS.end())
        ui->combox->setCurrentIndex(static_cast<int>(found - KINDS.begin()));
}

void NetExtend::slot_ButtonPressed()
{
    keyClick();
    if (sender() != ui->btn_check)
        return;
    const QSize corner = fractionOf(screenSize(), 0.1, 0.1);
    placeOnScreen(m_pDiagnosis, fractionOf(screenSize(), 0.7, 0.8),
                  {corner.width(), corner.height()});
    m_pDiagnosis->exec();
}

// Also runs when the service's own answer is shown, and sends it back; this is intended.
void NetExtend::slot_comboxChange(int index)
{
    if (index < 0 || index >= static_cast<int>(KINDS.size())) {
        refreshPriority();
        return;
    }
    netT::setDevPriority(KINDS[static_cast<std::size_t>(index)], false, NET_SERVICE_TIMEOUT_MS);
    ++m_nChoices;
}
