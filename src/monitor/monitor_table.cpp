#include "monitor/monitor_table.h"

namespace {

const QString kCurrent = QStringLiteral("Current");

}  // namespace

const QStringList& monitor_file_types() {
    static const QStringList types = [] {
        QStringList t{QStringLiteral("*.*")};
        const char* bare =
            "asa asd asf asp avi bas bat bkf bks bmp cab cda chm cls cnt csv dat dbf dbs ddf dll "
            "doc dot epe exe frm frx gif hlp htm html htt ico icw inf ini jpg ldb lgn lib log lst "
            "mdb mov mp3 mpeg mpg msc msg ocx out pdf pml pps ra ram rf rjs rm rmm rmp rmx rnx rp "
            "rsml rt rtf rv scc sdp set sln smi sql ssm tif txt url vbp vbw ver wav wmf wri xlm "
            "xls xml ZIP";
        t += QString::fromLatin1(bare).split(u' ');
        return t;
    }();
    return types;
}

MonitorTable read_monitor_table(const ProfileFile& settings) {
    MonitorTable table;
    for (int i = 1; i <= 9999; ++i) {
        const QString key = QStringLiteral("monitor_%1").arg(i);
        const QString directory = settings.read(QStringLiteral("Monitor Directories"), key);
        if (directory.isEmpty()) {
            break;
        }
        table.directories << directory;
        const QString type = settings.read(QStringLiteral("Monitor File Types"), key);
        if (type.isEmpty()) {
            break;
        }
        table.file_types << type;
    }
    return table;
}

MonitorOptions read_monitor_options(const ProfileFile& settings) {
    MonitorOptions o;
    o.file_type = settings.read(kCurrent, QStringLiteral("Last Monitor File Type"));
    o.interval = settings.read(kCurrent, QStringLiteral("Monitor Interval"));
    if (o.interval.isEmpty()) {
        o.interval = QStringLiteral("0");
    }
    o.save_in_db = settings.read(kCurrent, QStringLiteral("Monitor Save In Database"))
                       .toLower()
                       .contains(u'y');
    return o;
}

bool monitor_row_is_new(const QStringList& directories, const QString& selected_type,
                        const QString& path, const QString& type) {
    for (const QString& d : directories) {
        if (d == path && selected_type == type) {
            return false;
        }
    }
    return true;
}

QString monitor_delete_question(const QString& directory) {
    return QStringLiteral("Are you sure you want to remove the directory '") + directory +
           QStringLiteral("' from being monitored?  ");
}
