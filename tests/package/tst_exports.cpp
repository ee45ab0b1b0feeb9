#include "oxa/package/Package.h"
#include "oxa/toolkit/Catalogue.h"

#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace oxa;

// What liboxa shows a host: every class of the catalogue, and nothing of the
// library's internals (the classes of its private headers, anonymous
// namespaces).
class TestExports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QProcess nm;
        nm.start(QStringLiteral("nm"),
                 {QStringLiteral("-D"), QStringLiteral("--defined-only"), QStringLiteral("-C"),
                  QStringLiteral(OXA_LIBRARY_FILE)});
        QVERIFY2(nm.waitForFinished(60000) && nm.exitCode() == 0, "nm could not list the library");
        m_symbols = QString::fromUtf8(nm.readAllStandardOutput()).split(QLatin1Char('\n'));
        QVERIFY(m_symbols.size() > 100);
        RegisterAll();
    }

    void catalogueClassesAreExported()
    {
        QVERIFY(!Catalogue::Instance().Components().isEmpty());
        for (const TComponentEntry &entry : Catalogue::Instance().Components()) {
            const QString member = QStringLiteral("oxa::%1::").arg(entry.ClassName);
            const bool exported = std::any_of(m_symbols.cbegin(), m_symbols.cend(),
                                              [&](const QString &s) { return s.contains(member); });
            QVERIFY2(exported, qPrintable(entry.ClassName));
        }
    }

    void internalsStayHidden()
    {
        QStringList internals;
        const QRegularExpression declared(
            QStringLiteral(R"(^(?:class|struct)\s+(\w+(?:::\w+)*)\b[^;]*$)"),
            QRegularExpression::MultilineOption);
        QDirIterator headers(QStringLiteral(OXA_SOURCE_DIR), {QStringLiteral("*_p.h")}, QDir::Files,
                             QDirIterator::Subdirectories);
        while (headers.hasNext()) {
            QFile file(headers.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString text = QString::fromUtf8(file.readAll());
            for (const QRegularExpressionMatch &m : declared.globalMatch(text))
                internals << m.captured(1);
        }
        QVERIFY2(!internals.isEmpty(), "no private header found");
        for (const QString &symbol : std::as_const(m_symbols)) {
            QVERIFY2(!symbol.contains(QLatin1String("(anonymous namespace)")), qPrintable(symbol));
            for (const QString &name : std::as_const(internals)) {
                const QRegularExpression use(QStringLiteral(R"(\boxa::%1(::|\b))").arg(name));
                QVERIFY2(!use.match(symbol).hasMatch(), qPrintable(symbol));
            }
        }
    }

private:
    QStringList m_symbols;
};

QTEST_MAIN(TestExports)
#include "tst_exports.moc"
