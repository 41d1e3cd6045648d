#include "pages/web_profiles.h"

#include "core/profile_file.h"
#include "core/run_error.h"

namespace {

const QString kList = QStringLiteral("Profile List");
constexpr int kMostProfiles = 9999;

QString list_key(int i) {
    return QStringLiteral("Profile") + QString::number(i);
}

QString section_of(const QString& name) {
    return QStringLiteral("Profile - ") + name;
}

// A text as the settings file takes it: an empty text is written as an empty
// value, never taken for the null value that deletes the key.
QString value(const QString& text) {
    return text.isNull() ? QStringLiteral("") : text;
}

QString yes_no(bool on) {
    return on ? QStringLiteral("Yes") : QStringLiteral("No");
}

void load(const ProfileFile& ini, WebProfileControls& c) {
    c.entries.clear();
    for (int i = 1; i <= kMostProfiles; ++i) {
        const QString name = ini.read(kList, list_key(i));
        if (name.isEmpty()) {
            break;
        }
        c.entries << name;
    }
}

void refresh(const ProfileFile& ini, WebProfileControls& c) {
    const QString section = section_of(c.name);
    const auto text = [&](const char* key, QString& control) {
        const QString v = ini.read(section, QLatin1String(key));
        if (!v.isEmpty()) {
            control = v;
        }
    };
    text("Target Directory", c.target_directory);
    text("Image Page", c.image_page);
    text("Image Template", c.image_template);
    const auto flag = [&](const char* key, bool& box) {
        const QString v = ini.read(section, QLatin1String(key));
        box = !v.isEmpty() && v.at(0).toLower() == u'y';
    };
    flag("Delete Files", c.delete_files);
    flag("Slide Show", c.slide_show);
    flag("Slide Show Loop", c.slide_show_loop);
}

void save(ProfileFile& ini, WebProfileControls& c) {
    const QString section = section_of(c.name);
    ini.write(section, QStringLiteral("Target Directory"), value(c.target_directory));
    ini.write(section, QStringLiteral("Image Page"), value(c.image_page));
    ini.write(section, QStringLiteral("Image Template"), value(c.image_template));
    ini.write(section, QStringLiteral("Delete Files"), yes_no(c.delete_files));
    ini.write(section, QStringLiteral("Slide Show"), yes_no(c.slide_show));
    ini.write(section, QStringLiteral("Slide Show Loop"), yes_no(c.slide_show_loop));
    // The walk goes on to the first gap, which is where a new name goes.
    bool found = false;
    int i = 1;
    for (; i <= kMostProfiles; ++i) {
        const QString listed = ini.read(kList, list_key(i));
        if (listed.isEmpty()) {
            break;
        }
        if (listed == c.name) {
            found = true;
        }
    }
    if (!found) {
        ini.write(kList, list_key(i), value(c.name));
        c.entries << c.name;
    }
}

void remove(ProfileFile& ini, WebProfileControls& c) {
    const QString section = section_of(c.name);
    for (const char* key : {"Max Image Height", "Max Image Width", "Target Directory", "Image Page",
                            "Image Template", "Delete Files", "Slide Show", "Slide Show Loop"}) {
        ini.remove(section, QLatin1String(key));
    }
    const int last = static_cast<int>(c.entries.size()) - 1;
    int i = 0;
    for (; i <= last; ++i) {
        const QString listed = ini.read(kList, list_key(i + 1));
        if (!listed.isEmpty() && listed.compare(c.name, Qt::CaseInsensitive) == 0) {
            // The later names move up one place.
            for (int j = i; j <= last; ++j) {
                const QString next = ini.read(kList, list_key(j + 2));
                if (!next.isEmpty()) {
                    ini.write(kList, list_key(j + 1), next);
                } else {
                    ini.remove(kList, list_key(j + 1));
                }
            }
        }
        if (c.entries.at(i) == c.name) {
            break;
        }
    }
    if (i > last) {
        throw RunError(QStringLiteral("Invalid procedure call or argument"));
    }
    c.entries.removeAt(i);
}

}  // namespace

void web_profile(ProfileFile& settings, const QString& operation, WebProfileControls& c) {
    if (operation == QLatin1String("load")) {
        load(settings, c);
    } else if (operation == QLatin1String("refresh")) {
        refresh(settings, c);
    } else if (operation == QLatin1String("save")) {
        save(settings, c);
    } else if (operation == QLatin1String("delete")) {
        remove(settings, c);
    }
}
