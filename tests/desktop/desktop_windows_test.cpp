// The desktop windows, offscreen: each built from a request, answered with keys
// through the front end, and the outcome and answer checked.
#include "desktop/DesktopFrontEnd.hpp"
#include "desktop/FileChooserWindow.hpp"
#include "desktop/HostWatch.hpp"
#include "desktop/Pkcs12Window.hpp"
#include "desktop/SignatureConfirmWindow.hpp"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <unistd.h>

#include <functional>

using namespace OrvelGui;
Q_DECLARE_METATYPE(OrvelGui::Outcome)
Q_DECLARE_METATYPE(OrvelGui::Window)

namespace {

// A key script: plain keys, or text typed into whatever has the focus.
struct Key {
    Key(Qt::Key k = Qt::Key_unknown) : key(k) {}
    Key(const char *typed) : key(Qt::Key_unknown), text(typed) {}
    Qt::Key key;
    QString text;
};
using Keys = QList<Key>;

// Sends the keys to the modal window once it is up, then runs `show`.
Outcome answerWith(const Keys &keys, const std::function<Outcome()> &show)
{
    QTimer::singleShot(0, [keys] {
        QWidget *window = QApplication::activeModalWidget();
        QVERIFY(window);
        QVERIFY(QTest::qWaitForWindowExposed(window));
        for (const Key &key : keys) {
            QWidget *target = QApplication::focusWidget() ? QApplication::focusWidget() : window;
            if (!key.text.isEmpty())
                QTest::keyClicks(target, key.text);
            else
                QTest::keyClick(target, key.key);
        }
    });
    return show();
}

// A request for `window`, with what any window needs: three certificates, the
// first preselected, the data to sign as text with formatted text beside it.
Request request(Window window, unsigned preselected = 0)
{
    Request r;
    r.window = window;
    r.language = Language::English;
    r.message = "Sign the document?";
    r.icon = 2;
    r.button = static_cast<int>(preselected);
    r.selected = preselected;
    r.certificate = "\x01\x02 no certificate";
    for (const char *subject : {"CN = Jiří Novák", "CN = Eliška Svobodová", "CN = Ľubomír Kráľ"})
        r.certificates.push_back({"not a certificate", subject, "2027-01-01", "2026-12-01", 30, false, true});
    r.version = "5.2";
    r.hashAlg = "SHA-256";
    r.hashVal = "00ff";
    r.data = "Pay 100 EUR";
    r.rtf = std::string("{\\rtf1\\ansi\\ansicpg1250 {\\fonttbl{\\f0 Arial;}}\\f0 Zaplat\\'ed 100 EUR\\par}");
    return r;
}

} // namespace

class DesktopWindowsTest : public QObject {
    Q_OBJECT
    GuiLog log_;
    DesktopFrontEnd frontEnd_{log_};

    int hostEnd_ = -1;

    Outcome show(const Request &r, Answer &answer)
    {
        switch (r.window) {
        case Window::YesNoDialog: return frontEnd_.askYesNo(r, answer);
        case Window::CertificateSelect: return frontEnd_.selectCertificate(r, answer);
        case Window::SignatureConfirm: return frontEnd_.confirmSignature(r, answer);
        case Window::DisplayCert: return frontEnd_.showCertificate(r);
        default: return frontEnd_.showMessage(r);
        }
    }

private slots:
    // Standard input as the library leaves it: a pipe whose other end the host
    // holds while the dialog runs.
    void initTestCase()
    {
        int fds[2];
        QVERIFY(::pipe(fds) == 0);
        QVERIFY(::dup2(fds[0], STDIN_FILENO) == STDIN_FILENO);
        ::close(fds[0]);
        hostEnd_ = fds[1];
    }
    void cleanupTestCase() { ::close(hostEnd_); }

    // The answer's fields are checked for the windows that give them: `yes`,
    // `selected` (-1: any), `confirmed`.
    void windowsAnswerTheirKeys_data()
    {
        QTest::addColumn<Window>("window");
        QTest::addColumn<unsigned>("preselected");
        QTest::addColumn<Keys>("keys");
        QTest::addColumn<Outcome>("outcome");
        QTest::addColumn<bool>("yes");
        QTest::addColumn<int>("selected");
        const auto row = [](const char *name, Window window, unsigned preselected, const Keys &keys, Outcome outcome,
                            bool yes = false, int selected = 0) {
            QTest::newRow(name) << window << preselected << keys << outcome << yes << selected;
        };
        const Outcome answered = Outcome::Answered, cancelled = Outcome::Cancelled;
        row("yes/no: Enter takes the default yes", Window::YesNoDialog, 0, {{Qt::Key_Return}}, answered, true);
        row("yes/no: Enter takes the default no", Window::YesNoDialog, 1, {{Qt::Key_Return}}, answered, false);
        row("yes/no: Tab then Space presses no", Window::YesNoDialog, 0, {{Qt::Key_Tab}, {Qt::Key_Space}}, answered);
        row("yes/no: Escape backs out", Window::YesNoDialog, 0, {{Qt::Key_Escape}}, cancelled);
        // Windows that only show something close as answered either way.
        row("message: Enter", Window::MessageBox, 0, {{Qt::Key_Return}}, answered);
        row("message: Escape", Window::MessageBox, 0, {{Qt::Key_Escape}}, answered);
        row("certificate: Enter", Window::DisplayCert, 0, {{Qt::Key_Return}}, answered);
        row("certificate: Escape", Window::DisplayCert, 0, {{Qt::Key_Escape}}, answered);
        row("select: Enter keeps the preselected", Window::CertificateSelect, 2, {{Qt::Key_Return}}, answered, false, 2);
        row("select: arrow then Enter", Window::CertificateSelect, 0, {{Qt::Key_Down}, {Qt::Key_Return}}, answered,
            false, 1);
        row("select: filter narrows to one row", Window::CertificateSelect, 0,
            {{Qt::Key_Backtab}, "svob", {Qt::Key_Return}}, answered, false, 1);
        row("select: filter ignores case", Window::CertificateSelect, 2, {{Qt::Key_Backtab}, "NOV", {Qt::Key_Return}},
            answered, false, 0);
        row("select: Escape backs out", Window::CertificateSelect, 1, {{Qt::Key_Escape}}, cancelled, false, 0);
        // Enter declines: the signature is never the default.
        row("signature: Enter declines", Window::SignatureConfirm, 2, {{Qt::Key_Return}}, answered, false, 2);
        row("signature: Escape backs out", Window::SignatureConfirm, 2, {{Qt::Key_Escape}}, cancelled, false, -1);
    }
    void windowsAnswerTheirKeys()
    {
        QFETCH(Window, window);
        QFETCH(unsigned, preselected);
        QFETCH(Keys, keys);
        const Request r = request(window, preselected);
        Answer answer;
        QFETCH(Outcome, outcome);
        QCOMPARE(answerWith(keys, [&] { return show(r, answer); }), outcome);
        QFETCH(bool, yes);
        QCOMPARE(answer.yes, yes);
        QFETCH(int, selected);
        if (selected >= 0)
            QCOMPARE(answer.selected, unsigned(selected));
        QVERIFY(!answer.confirmed);
    }

    void signatureNeverSignsUnread_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<bool>("signableAtOnce");
        QTest::addColumn<QString>("shown");
        QTest::newRow("short text") << QByteArray("Pay 100 EUR") << true << "Pay 100 EUR";
        QTest::newRow("long text") << QByteArray("Clause.\n").repeated(400) << false << "Clause.";
        QTest::newRow("bytes that are not text") << QByteArray("Pay 100 \xe9UR") << true << "50 61 79 20";
        QTest::newRow("a 1 MB document, whole") << QByteArray("Clause of the contract.\n").repeated(44000) + "The end."
                                                << false << "The end.";
    }
    void signatureNeverSignsUnread()
    {
        QFETCH(QByteArray, data);
        Request r = request(Window::SignatureConfirm);
        r.data = data.toStdString();
        r.rtf.reset();
        SignatureConfirmWindow window(r);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QPlainTextEdit *view = window.textViews().front();
        QFETCH(QString, shown);
        QVERIFY(view->toPlainText().contains(shown));
        QFETCH(bool, signableAtOnce);
        QCOMPARE(window.signButton()->isEnabled(), signableAtOnce);
        QVERIFY(window.declineButton()->isDefault());
        QTest::keyClick(view, Qt::Key_End, Qt::ControlModifier);
        QVERIFY(window.signButton()->isEnabled());
        QTest::keyClick(&window, Qt::Key_Return); // still declines
        QCOMPARE(window.result(), int(QDialog::Accepted));
        QVERIFY(!window.confirmed());
    }

    void formattedTextLosesItsMarkup()
    {
        Request r = request(Window::SignatureConfirm);
        r.rtf = std::string("{\\rtf1\\ansi\\ansicpg1250 {\\fonttbl{\\f0 Arial;}}\\f0\\b Zaplat\\'ed\\b0  100 \\u8364?\\par}");
        SignatureConfirmWindow window(r);
        QCOMPARE(window.textViews().back()->toPlainText(), QString::fromUtf8("Zaplatí 100 €"));
    }

    void pkcs12ChecksThePasswordBeforeAnswering()
    {
        Request r = request(Window::SelectPKCS12);
        r.fileName = ORVEL_SOURCE_DIR "/tests/data/carol.p12";
        Answer answer;
        const Outcome outcome = answerWith({"wrong", {Qt::Key_Return}}, [&] {
            QTimer::singleShot(50, [] {
                auto *window = qobject_cast<Pkcs12Window *>(QApplication::activeModalWidget());
                QVERIFY(window && window->problem()->isVisible());
                QVERIFY(window->problem()->text().contains(QStringLiteral("Wrong password")));
                QTest::keyClicks(window->passwordField(), QStringLiteral("heslo"));
                QTest::keyClick(window->passwordField(), Qt::Key_Return);
            });
            return frontEnd_.selectPkcs12(r, answer);
        });
        QCOMPARE(outcome, Outcome::Answered);
        QCOMPARE(answer.path, r.fileName);
        QCOMPARE(answer.secondValue, std::string("heslo"));
    }

    void pkcs12OkWaitsForAnExistingFile()
    {
        Request r = request(Window::SelectPKCS12);
        r.fileName = "/nonexistent/file.p12";
        Pkcs12Window window(r);
        window.show();
        QTest::keyClick(&window, Qt::Key_Return);
        QVERIFY(window.isVisible());
        window.fileField()->setText(ORVEL_SOURCE_DIR "/tests/data/alice.pem");
        QTest::keyClick(window.passwordField(), Qt::Key_Return);
        QVERIFY(window.problem()->text().contains(QStringLiteral("Not a PKCS#12")));
    }

    void fileFiltersBecomeNameFilters()
    {
        QCOMPARE(qtNameFilters("Documents (pdf,doc)|Text (*.txt)"),
                 QStringList({"Documents (*.pdf *.doc)", "Text (*.txt)"}));
        QCOMPARE(qtNameFilters("All (*)|Text (txt)"), QStringList());
        QCOMPARE(qtNameFilters(""), QStringList());
    }

    void fileSaveTakesTheTypedName()
    {
        QTemporaryDir folder;
        QVERIFY(QDir::setCurrent(folder.path()));
        Request r = request(Window::FileSave);
        r.fileName = "contract.pdf";
        Answer answer;
        QCOMPARE(answerWith({{Qt::Key_Return}}, [&] { return frontEnd_.chooseFile(r, answer); }), Outcome::Answered);
        QCOMPARE(QString::fromStdString(answer.path), folder.filePath("contract.pdf"));
    }

    void reinsertFollowsItsCommands_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<bool>("hide");
        QTest::addColumn<Outcome>("outcome");
        QTest::addColumn<QString>("expectedLog");
        QTest::newRow("close command") << QByteArray("ReinsertCard removeReinsertCard close") << false
                                       << Outcome::Answered << "Text: remove.\nNotice closed.";
        QTest::newRow("end of input") << QByteArray("ReinsertCard insert") << false << Outcome::Answered
                                      << "Text: insert.\nEnd of input.";
        QTest::newRow("hidden, still consumed") << QByteArray("ReinsertCard insertReinsertCard close") << true
                                                << Outcome::Cancelled << "The user hid the notice.\nText: insert.";
    }
    void reinsertFollowsItsCommands()
    {
        QFETCH(QByteArray, input);
        int fds[2];
        QVERIFY(::pipe(fds) == 0);
        GuiLog log;
        ReinsertCommandReader commands(fds[0], log);
        DesktopFrontEnd frontEnd(log);
        QFETCH(bool, hide);
        QTimer::singleShot(0, [&] {
            for (QWidget *window : QApplication::topLevelWidgets())
                if (hide && window->isVisible())
                    QTest::keyClick(window, Qt::Key_Escape);
            QVERIFY(::write(fds[1], input.data(), size_t(input.size())) == ssize_t(input.size()));
            ::close(fds[1]);
        });
        Request r = request(Window::ReinsertCard);
        QFETCH(Outcome, outcome);
        QCOMPARE(frontEnd.reinsertCard(r, commands), outcome);
        QFETCH(QString, expectedLog);
        QVERIFY2(QString::fromStdString(log.text()).contains(expectedLog), log.text().c_str());
        ::close(fds[0]);
    }

    void aHostThatIsGoneEndsEveryModalWindow()
    {
        int fds[2];
        QVERIFY(::pipe(fds) == 0);
        const int savedInput = ::dup(STDIN_FILENO);
        ::dup2(fds[0], STDIN_FILENO);
        ::close(fds[0]);
        ::close(fds[1]); // the host is gone
        Answer answer;
        const Request r = request(Window::YesNoDialog);
        QCOMPARE(frontEnd_.askYesNo(r, answer), Outcome::Cancelled);
        QCOMPARE(frontEnd_.showMessage(r), Outcome::Cancelled);
        QCOMPARE(frontEnd_.selectCertificate(r, answer), Outcome::Cancelled);
        ::dup2(savedInput, STDIN_FILENO);
        ::close(savedInput);
    }
};

QTEST_MAIN(DesktopWindowsTest)
#include "desktop_windows_test.moc"
