// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/serial_settings.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include "core/check.h"
#include "core/raise.h"
#include "core/retry.h"
#include "core/serial.h"

using namespace kor;

namespace kor {

namespace {

struct Setting {
    int32_t value;
    tcflag_t flag;
};

constexpr std::array<Setting, 11> kSpeeds{{
    {110, B110},
    {300, B300},
    {600, B600},
    {1200, B1200},
    {2400, B2400},
    {4800, B4800},
    {9600, B9600},
    {19200, B19200},
    {38400, B38400},
    {57600, B57600},
    {115200, B115200},
}};

constexpr std::array<Setting, 4> kSizes{{{5, CS5}, {6, CS6}, {7, CS7}, {8, CS8}}};

template <size_t N>
const Setting* find(const std::array<Setting, N>& table, int32_t value) {
    const auto* found =
        std::find_if(table.begin(), table.end(), [=](const Setting& row) { return row.value == value; });
    return found != table.end() ? found : nullptr;
}

void clear(tcflag_t& flags, tcflag_t bits) { flags &= ~bits; }

void set(tcflag_t& flags, tcflag_t bits) { flags |= bits; }

}  // namespace

bool set_read_timeout(termios& settings, uint8_t tenths) {
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = tenths;
    return true;
}

bool set_baud_rate(termios& settings, int32_t baudRate) {
    const Setting* speed = find(kSpeeds, baudRate);
    if (speed == nullptr) { return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported baudRate: %d", baudRate), false; }
    clear(settings.c_cflag, CIBAUD);  // a speed of its own for what is received
    if (cfsetispeed(&settings, speed->flag) != 0) {
        return raise(KOR_RESULT_IO_ERROR, "cfsetispeed() error: %d", errno), false;
    }
    if (cfsetospeed(&settings, speed->flag) != 0) {
        return raise(KOR_RESULT_IO_ERROR, "cfsetospeed() error: %d", errno), false;
    }
    return true;
}

bool set_data_bits(termios& settings, int32_t dataBits) {
    const Setting* size = find(kSizes, dataBits);
    if (size == nullptr) { return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported dataBits: %d", dataBits), false; }
    clear(settings.c_cflag, CSIZE);
    set(settings.c_cflag, size->flag);
    return true;
}

bool set_stop_bits(termios& settings, int32_t stopBits) {
    switch (stopBits) {
        case KOR_SERIAL_STOP_BITS_ONE:
            return clear(settings.c_cflag, CSTOPB), true;
        case KOR_SERIAL_STOP_BITS_TWO:
        case KOR_SERIAL_STOP_BITS_ONE_AND_HALF:
            return set(settings.c_cflag, CSTOPB), true;
        default:
            return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported stopBits: %d", stopBits), false;
    }
}

bool set_parity(termios& settings, int32_t parity) {
    switch (parity) {
        case KOR_SERIAL_PARITY_NONE:
            return clear(settings.c_cflag, PARENB), true;
        case KOR_SERIAL_PARITY_ODD:
            clear(settings.c_cflag, CMSPAR);  // which makes mark of odd, and space of even
            return set(settings.c_cflag, PARENB | PARODD), true;
        case KOR_SERIAL_PARITY_EVEN:
            clear(settings.c_cflag, CMSPAR | PARODD);
            return set(settings.c_cflag, PARENB), true;
        default:
            return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported parity: %d", parity), false;
    }
}

bool set_flow_control(termios& settings, int32_t flowControl) {
    clear(settings.c_iflag, IXON | IXOFF);
    clear(settings.c_cflag, CRTSCTS);
    switch (flowControl) {
        case KOR_SERIAL_FLOW_CONTROL_NONE:
            return true;
        case KOR_SERIAL_FLOW_CONTROL_SOFTWARE:
            return set(settings.c_iflag, IXON | IXOFF), true;
        case KOR_SERIAL_FLOW_CONTROL_HARDWARE:
            return set(settings.c_cflag, CRTSCTS), true;
        default:
            return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported flowControl: %d", flowControl), false;
    }
}

// Of each kind the flags stay that neither change, drop or add a byte nor act on one: those of the flow control, and
// what counts only together with a flag that goes, as all of the output's do with OPOST.
void force_raw(termios& settings) {
    set(settings.c_cflag, CREAD | CLOCAL);
    clear(settings.c_lflag, ICANON | ECHO | ECHOE | ECHONL | ISIG | IEXTEN);
    clear(settings.c_iflag,
          IGNBRK | BRKINT | IGNPAR | PARMRK | INPCK | ISTRIP | INLCR | IGNCR | ICRNL | IUCLC | IMAXBEL);
    clear(settings.c_oflag, OPOST | ONLCR | OCRNL | ONOCR | ONLRET);
}

}  // namespace kor

namespace {

// Reads the settings, lets `change` alter them in memory and applies them unless it raised.
template <typename Change>
void change_settings(const KorSerial* handle, Change&& change) {
    if (refuse_null(handle, "'handle' is NULL")) { return; }
    termios settings{};
    if (tcgetattr(handle->fd, &settings) != 0) { return raise(KOR_RESULT_IO_ERROR, "tcgetattr() error: %d", errno); }
    if (!change(settings)) { return; }
    force_raw(settings);
    if (retry([&] { return tcsetattr(handle->fd, TCSANOW, &settings); }) != 0) {
        return raise(KOR_RESULT_IO_ERROR, "tcsetattr(TCSANOW) error: %d", errno);
    }
}

}  // namespace

void kor_serial_config(KorSerial* handle, const KorSerialConfig* config) {
    if (refuse_null(handle, "'handle' is NULL")) { return; }
    if (refuse_null(config, "'config' is NULL")) { return; }
    change_settings(handle, [=](termios& settings) {
        return set_read_timeout(settings, config->readTimeout) && set_baud_rate(settings, config->baudRate)
               && set_data_bits(settings, config->dataBits) && set_stop_bits(settings, config->stopBits)
               && set_parity(settings, config->parity) && set_flow_control(settings, config->flowControl);
    });
}

void kor_serial_set_read_timeout(KorSerial* handle, uint8_t tenths) {
    change_settings(handle, [=](termios& settings) { return set_read_timeout(settings, tenths); });
}

void kor_serial_set_baud_rate(KorSerial* handle, int32_t baudRate) {
    change_settings(handle, [=](termios& settings) { return set_baud_rate(settings, baudRate); });
}

void kor_serial_set_data_bits(KorSerial* handle, int32_t dataBits) {
    change_settings(handle, [=](termios& settings) { return set_data_bits(settings, dataBits); });
}

void kor_serial_set_stop_bits(KorSerial* handle, int32_t stopBits) {
    change_settings(handle, [=](termios& settings) { return set_stop_bits(settings, stopBits); });
}

void kor_serial_set_parity(KorSerial* handle, int32_t parity) {
    change_settings(handle, [=](termios& settings) { return set_parity(settings, parity); });
}

void kor_serial_set_flow_control(KorSerial* handle, int32_t flowControl) {
    change_settings(handle, [=](termios& settings) { return set_flow_control(settings, flowControl); });
}
