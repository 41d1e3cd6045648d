#include "pages/tag_text.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <gtest/gtest.h>

TEST(TagText, ReplaceOnceTakesOnlyTheFirstOccurrenceWhateverItsCase) {
    QString text = QStringLiteral("<b>[Title]</b> and [TITLE] and [title]");
    int asked = 0;
    EXPECT_TRUE(replace_once(text, QStringLiteral("[title]"), [&] {
        ++asked;
        return QStringLiteral("Sunset");
    }));
    EXPECT_EQ(text, "<b>Sunset</b> and [TITLE] and [title]");
    // A tag that is not there costs nothing: its value is never asked for.
    EXPECT_FALSE(replace_once(text, QStringLiteral("[catalog]"), [&] {
        ++asked;
        return QStringLiteral("x");
    }));
    EXPECT_EQ(asked, 1);
}

TEST(TagText, IncludesNestMissingOnesVanishSelfOnesStop) {
    TestHome home(false);
    const QString inner = home.write_file("inner.inc", "<i>\r\ninner</i>\n");
    const QString outer =
        home.write_file("outer.inc", ("<b>[include=" + inner + "]</b>\r\n[title]").toUtf8());
    QString text = "A[INCLUDE=" + outer + "]B[include=" + home.path("gone.inc") + "]C";
    expand_includes(text);
    // Line ends are lost, tags of the included files stay for later steps.
    EXPECT_EQ(text, "A<b><i>inner</i></b>[title]BC");

    // A file that includes itself stops at the fixed depth.
    const QString self = home.path("self.inc");
    home.write_file("self.inc", ("+[include=" + self + "]").toUtf8());
    QString looped = "[include=" + self + "]";
    expand_includes(looped);
    EXPECT_EQ(looped, QString(kMaxIncludeDepth, u'+'));
}

// The bound is on how deep includes nest, not how many there are: a header of
// 70 distinct includes expands them all, and a missing file after them still
// goes.
TEST(TagText, SeventyIncludesSideBySideAllExpand) {
    TestHome home(false);
    QString text = "<head>";
    QString want = "<head>";
    for (int i = 0; i < 70; ++i) {
        const QString n = QString::number(i);
        text +=
            "[include=" + home.write_file("part" + n + ".inc", ("<p>" + n + "</p>\r\n").toUtf8()) +
            "]";
        want += "<p>" + n + "</p>";
    }
    text += "[include=" + home.path("missing.inc") + "]</head>";
    want += "</head>";
    expand_includes(text);
    EXPECT_EQ(text, want);
}

// An include comes into the page byte for byte, whatever its encoding.
TEST(TagText, IncludedBytesReachThePageUnchanged) {
    TestHome home(false);
    const QByteArray samples[] = {
        QByteArray("caf\xE9 cr\xE8me", 10),               // Latin-1
        QByteArray("caf\xC3\xA9 \xE2\x80\xA8 \xC2\xA0"),  // UTF-8, U+2028, NBSP
        QByteArray(
            "\xFF\xFE\xC3 mixed \xC3\xA9 \xED\xA0\x80 \xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF \xE9"),
        QByteArray("\x80\xBF\xC0\xAF", 4),  // overlong and stray continuation bytes
    };
    for (const QByteArray& bytes : samples) {
        SCOPED_TRACE(bytes.toHex().toStdString());
        EXPECT_EQ(page_bytes(page_text(bytes)), bytes);
        QString text = "<p>[include=" + home.write_file("enc.inc", bytes) + "]</p>";
        expand_includes(text);
        EXPECT_EQ(page_bytes(text), "<p>" + bytes + "</p>");
    }
    // Between stray bytes, valid characters stay characters.
    const QString mixed = page_text(samples[2]);
    EXPECT_TRUE(mixed.contains(QString::fromUtf8(" \xC3\xA9 ")) &&
                mixed.contains(QString::fromUtf8("\xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF ")));
}
