// Frames of the older PLC download, in the manner of Modbus ASCII (Modbus over Serial Line V1.02,
// 2.5.2): a colon, each byte as two upper-case hexadecimal digits, CR LF. The last byte is the
// LRC, which makes the sum of all bytes zero. See docs/decisions/0008-legacy-plc-download.md.
#pragma once

#include <QByteArray>

#include <optional>

// The frame of `bytes`, check byte and line end included.
QByteArray encodeFrame(const QByteArray &bytes);

// The bytes of a frame without its check byte; `frame` begins with the colon and ends before, or
// with, the line end. Nothing if it is no frame or its check byte is wrong.
std::optional<QByteArray> decodeFrame(const QByteArray &frame);
