#pragma once

#include "imaging/print_job.h"

#include <QString>
#include <QStringList>

#include <memory>

class Dialogs;
class QPainter;
class QPrinter;

// The row of the printer box that writes PDF files instead of printing.
inline const QString kPdfPrinterName = QStringLiteral("Print to PDF");

// The printers of the machine (through the print system), then the PDF
// printer, always last.
QStringList printer_names();
// The machine's default printer, or the PDF printer when it has none.
QString default_printer_name();

// A printer of the machine, or the PDF printer, as a job's device. Each
// document is one print job for the spooler; on the PDF printer each document
// is one PDF file: the first asks for its name (default "quilldex.pdf" in the
// last directory), the later ones go beside it as name-2.pdf, name-3.pdf...
// A document is written under a temporary name and takes its own only when
// it ends, so a killed one leaves no file.
class QtPrintDevice : public PrintDevice {
public:
    QtPrintDevice(QString printer_name, Dialogs& dialogs, QString& last_directory);
    ~QtPrintDevice() override;

    void set_orientation(int orientation) override { orientation_ = orientation; }
    void set_quality(int quality) override { quality_ = quality; }
    bool open_document() override;
    QSizeF scale_size() const override;
    void draw(const QImage& picture, const QRectF& target) override;
    void end_document() override;
    void kill_document() override;

    // The files the PDF printer wrote, in order.
    const QStringList& files() const { return files_; }

private:
    bool is_pdf() const { return printer_name_ == kPdfPrinterName; }
    // The resolution a quality word asks of this printer.
    int resolution_for(int quality) const;
    void close_painter();

    QString printer_name_;
    Dialogs& dialogs_;
    QString& last_directory_;
    int orientation_ = 1;
    int quality_ = 0;
    int documents_ = 0;
    QString pdf_stem_;   // the chosen name without ".pdf"
    QString pdf_first_;  // the chosen name itself
    QString pdf_target_;
    QString pdf_partial_;
    QStringList files_;
    std::unique_ptr<QPrinter> printer_;
    std::unique_ptr<QPainter> painter_;
};
