#pragma once

#include <QImage>
#include <QList>
#include <QString>

#include <stdexcept>

// A scanner failure. `searching` is set when no device could be reached or
// opened at all; otherwise the device failed part-way and `text` is its
// driver's own message.
class ScanError : public std::runtime_error {
public:
    ScanError(const QString& text, bool searching)
        : std::runtime_error(text.toStdString()), text_(text), searching_(searching) {}
    const QString& text() const { return text_; }
    bool searching() const { return searching_; }

private:
    QString text_;
    bool searching_;
};

// The machine's scanners through SANE: list the sources and take one image
// from one of them with the device's own default settings. The library is
// started when the object is made and ended with it, so that each command
// sees the devices and configuration of its moment. One thread.
class Scanner {
public:
    struct Source {
        QString name;   // the device name SANE opens, such as "test:0"
        QString label;  // vendor, model and type, for the chooser
    };

    Scanner();
    ~Scanner();
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    // Throws ScanError (searching) when SANE cannot start.
    QList<Source> sources();
    // Takes one image from `device`. A null image when the device had
    // nothing to give (cancelled at the device, no document). Throws
    // ScanError: searching when the device cannot be opened, otherwise with
    // the driver's message for a failure during the transfer.
    QImage acquire(const QString& device);

private:
    bool started_ = false;
};
