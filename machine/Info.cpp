#include "machine/Info.h"

#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "machine/QRWidget.h"
#include "platform/machine.h"
#include "ui_Info.h"

#include <algorithm>
#include <optional>
#include <string>

namespace {

constexpr std::size_t LEAST_SERIAL_LENGTH = 10;
constexpr std::size_t LEAST_MAC_LENGTH = 6;

struct MachineTexts
{
    std::string model;
    std::string serialNumber;
    std::string machineId;
    std::optional<std::string> product;
};

// Nothing if a read before the product's fails. The MAC address is a check and is not shown.
std::optional<MachineTexts> readMachine()
{
    const KVCORE::TMachine machine;
    MachineTexts texts;
    if (machine.GetSN(texts.serialNumber) == 0 || texts.serialNumber.size() < LEAST_SERIAL_LENGTH)
        return std::nullopt;
    if (machine.GetHMIType(texts.model) <= 0)
        return std::nullopt;
    std::string mac;
    if (machine.GetMac(mac) == 0 || mac.size() < LEAST_MAC_LENGTH)
        return std::nullopt;
    if (machine.getDeviceId(texts.machineId) < 0)
        return std::nullopt;
    std::string product;
    if (machine.GetProduct(product) != 0)
        texts.product = product;
    return texts;
}

// The code's side in pixels.
int codeSide()
{
    return 2 * screenSize().height() / 5;
}

// The white that a reader needs around the code: four of the 25 modules of the smallest code, less
// where the page, four fifths of the screen's width, has no room between its margins.
int quietZone(const QMargins &margins)
{
    const int page = screenSize().width() * 4 / 5;
    const int room = page - margins.left() - margins.right() - codeSide();
    return std::clamp(room / 2, 0, codeSide() * 4 / 25);
}

} // namespace

Info::Info(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::Info>())
{
    ui->setupUi(this);
    growLayouts(this);
    const QSize screen = screenSize();
    if (screen.width() < screen.height())
        ui->pageLayout->setDirection(QBoxLayout::TopToBottom);
    ui->lab_QRcode->hide();
    showMachine();
}

Info::~Info() = default;

void Info::retranslate()
{
    ui->retranslateUi(this);
    if (m_bProductUnknown)
        ui->label_35->clear();
    setStyleWhenSeen(this, infoStyle());
}

void Info::showMachine()
{
    const std::optional<MachineTexts> texts = readMachine();
    if (!texts)
        return;
    m_bProductUnknown = !texts->product;
    if (m_bProductUnknown)
        ui->label_35->clear();
    const std::string product = texts->product.value_or(std::string());
    ui->lab_Model->setText(QString::fromStdString(texts->model));
    ui->lab_Sn->setText(QString::fromStdString(texts->serialNumber));
    ui->lab_ReSn->setText(QString::fromStdString(texts->machineId));
    ui->lab_ReProduct->setText(QString::fromStdString(product));
    showCode(QString::fromStdString(product.empty() ? texts->machineId : product));
}

void Info::showCode(const QString &text)
{
    auto *code = new QRWidget(ui->lab_QRcode);
    code->setQRData(text);
    code->setFixedSize(codeSide(), codeSide());
    ui->codeLayout->setContentsMargins({});
    ui->codeLayout->addWidget(code, 0, Qt::AlignCenter);
    const int card = codeSide() + 2 * quietZone(ui->pageLayout->contentsMargins());
    ui->lab_QRcode->setFixedSize(card, card);
    ui->lab_QRcode->show();
}
