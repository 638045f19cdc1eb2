// What the update service answers, of any content and length, and what a page says to it.
#include "app/look/OutsideText.h"
#include "update/CDownloadThread.h"
#include "update/ResultText.h"
#include "update/UpdateJob.h"

#include <QVector>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

bool isSeen(uint code)
{
    const QChar::Category category = QChar::category(code);
    return category != QChar::Other_Control && category != QChar::Other_Format &&
           category != QChar::Separator_Line && category != QChar::Separator_Paragraph;
}

// Nothing of it is hidden: what cannot be seen is escaped.
bool isPlain(const QString &shown, const std::string &bytes)
{
    const QVector<uint> codes = shown.toUcs4();
    return std::all_of(codes.begin(), codes.end(), isSeen) &&
           (shown.contains(QLatin1String("\\x")) || shown.toStdString() == bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const CDownloadThread worker;
    const UpdateStatus status =
        parseUpdateStatus(std::string(reinterpret_cast<const char *>(data), size));
    if (status.model.size() > 256 || status.model.find('\0') != std::string::npos ||
        !isPlain(shownBytes(status.model), status.model))
        std::abort();
    if (resultText(PROJECT_JOB, status.nErrNumber, worker).isEmpty())
        std::abort();
    resultText(IMAGE_JOB, status.nErrNumber, worker); // may have nothing to say
    return 0;
}
