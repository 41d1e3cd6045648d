#include "imaging/print_device.h"

#include "core/dialogs.h"
#include "core/run_error.h"

#include <QFile>
#include <QPageLayout>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>

#include <algorithm>

QStringList printer_names() {
    QStringList names = QPrinterInfo::availablePrinterNames();
    names.removeAll(kPdfPrinterName);
    names << kPdfPrinterName;
    return names;
}

QString default_printer_name() {
    const QString name = QPrinterInfo::defaultPrinterName();
    return name.isEmpty() ? kPdfPrinterName : name;
}

QtPrintDevice::QtPrintDevice(QString printer_name, Dialogs& dialogs, QString& last_directory)
    : printer_name_(std::move(printer_name)), dialogs_(dialogs), last_directory_(last_directory) {}

QtPrintDevice::~QtPrintDevice() {
    if (painter_) {
        kill_document();
    }
}

int QtPrintDevice::resolution_for(int quality) const {
    // The PDF printer's pixel follows the quality word as a printer's does:
    // draft is coarse, high is fine.
    static const int kPdf[] = {150, 300, 600, 1200};
    const int step = std::clamp(-quality, 1, 4) - 1;
    if (is_pdf()) {
        return kPdf[step];
    }
    QList<int> offered = QPrinterInfo::printerInfo(printer_name_).supportedResolutions();
    std::sort(offered.begin(), offered.end());
    if (offered.isEmpty()) {
        return 0;
    }
    const auto last = static_cast<int>(offered.size()) - 1;
    return offered.at(std::min(last, step * last / 3));
}

bool QtPrintDevice::open_document() {
    ++documents_;
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    if (is_pdf()) {
        if (documents_ == 1) {
            Dialogs::FileRequest request;
            request.title = kPdfPrinterName;
            request.filter = QStringLiteral("PDF (*.pdf)|*.pdf|All Files (*.*)|*.*");
            request.initial_directory = last_directory_;
            request.file_name = QStringLiteral("quilldex.pdf");
            request.must_exist = false;
            pdf_first_ = dialogs_.open_file(request);
            if (pdf_first_.isEmpty()) {
                return false;
            }
            pdf_stem_ = pdf_first_.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)
                            ? pdf_first_.chopped(4)
                            : pdf_first_;
            pdf_target_ = pdf_first_;
        } else {
            pdf_target_ = pdf_stem_ + u'-' + QString::number(documents_) + QStringLiteral(".pdf");
        }
        pdf_partial_ = pdf_target_ + QStringLiteral(".part");
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(pdf_partial_);
        // The whole sheet is the PDF printer's page: nothing stops it at the edge.
        printer->setFullPage(true);
        printer->setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
    } else {
        printer->setPrinterName(printer_name_);
        if (!printer->isValid()) {
            throw RunError(QStringLiteral("Printer error: ") + printer_name_);
        }
    }
    printer->setDocName(QStringLiteral("Quilldex"));
    printer->setPageOrientation(orientation_ == 2 ? QPageLayout::Landscape : QPageLayout::Portrait);
    if (quality_ != 0) {
        if (const int dpi = resolution_for(quality_); dpi > 0) {
            printer->setResolution(dpi);
        }
    }
    auto painter = std::make_unique<QPainter>();
    if (!painter->begin(printer.get())) {
        QFile::remove(pdf_partial_);
        throw RunError(QStringLiteral("The printer ") + printer_name_ +
                       QStringLiteral(" could not start a document."));
    }
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    printer_ = std::move(printer);
    painter_ = std::move(painter);
    return true;
}

QSizeF QtPrintDevice::scale_size() const {
    if (!printer_) {
        return {};
    }
    return QSizeF(printer_->width(), printer_->height());
}

void QtPrintDevice::draw(const QImage& picture, const QRectF& target) {
    if (!painter_) {
        throw RunError(QStringLiteral("No document is open on the printer."));
    }
    painter_->drawImage(target, picture);
}

void QtPrintDevice::close_painter() {
    if (painter_ && painter_->isActive()) {
        painter_->end();
    }
    painter_.reset();
    printer_.reset();
}

void QtPrintDevice::end_document() {
    if (!painter_) {
        return;
    }
    const bool ended = painter_->end();
    close_painter();
    if (!ended) {
        throw RunError(QStringLiteral("The printer ") + printer_name_ +
                       QStringLiteral(" could not take the document."));
    }
    if (is_pdf()) {
        QFile::remove(pdf_target_);
        if (!QFile::rename(pdf_partial_, pdf_target_)) {
            QFile::remove(pdf_partial_);
            throw RunError(QStringLiteral("Cannot write ") + pdf_target_);
        }
        files_ << pdf_target_;
    }
}

void QtPrintDevice::kill_document() {
    if (!painter_) {
        return;
    }
    printer_->abort();
    close_painter();
    if (is_pdf()) {
        QFile::remove(pdf_partial_);
    }
}
