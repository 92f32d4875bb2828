// The desktop windows, offscreen: each built from a request, answered with keys
// through the front end, and the outcome and answer checked.
#include "common/VisibleText.hpp"
#include "desktop/CertificateSelectWindow.hpp"
#include "desktop/CertificateViewer.hpp"
#include "desktop/DesktopFrontEnd.hpp"
#include "desktop/FileChooserWindow.hpp"
#include "desktop/HostText.hpp"
#include "desktop/HostWatch.hpp"
#include "desktop/MessageWindow.hpp"
#include "desktop/Pkcs12Window.hpp"
#include "desktop/SignatureConfirmWindow.hpp"
#include "support/HostileSamples.hpp"
#include "support/TestCertificates.hpp"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
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

// Everything the window shows as text, one piece a line.
QString shownText(const QWidget *window)
{
    QString all;
    for (const QWidget *widget : window->findChildren<QWidget *>()) {
        if (!widget->isVisibleTo(window))
            continue;
        if (const auto *label = qobject_cast<const QLabel *>(widget))
            all += label->text() + QLatin1Char('\n');
        else if (const auto *view = qobject_cast<const QPlainTextEdit *>(widget))
            all += view->toPlainText() + QLatin1Char('\n');
        else if (const auto *text = qobject_cast<const QTextEdit *>(widget))
            all += text->toPlainText() + QLatin1Char('\n');
    }
    return all;
}

// Nothing in the text is hidden, and it holds what it must and not what it
// must not.
void checkShown(const QString &shown, const std::vector<std::string> &present, const std::vector<std::string> &absent)
{
    const std::string all = shown.toStdString();
    QCOMPARE(OrvelGui::visibleText(all).hiddenCharacters, std::size_t(0));
    for (const std::string &text : present)
        QVERIFY2(all.find(text) != std::string::npos, (text + " in " + all).c_str());
    for (const std::string &text : absent)
        QVERIFY2(all.find(text) == std::string::npos, text.c_str());
}

} // namespace

Q_DECLARE_METATYPE(OrvelTest::HostileSample)

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
        QTest::newRow("long text with markers") << QByteArray("Clause \xe2\x80\xae.\n").repeated(400) << false
                                                << "Clause ⟨U+202E⟩.";
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
        QTest::keyClick(view, Qt::Key_PageDown); // one page on, from the top
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

    void hostileDocumentsAreShownAsTheyAre_data()
    {
        QTest::addColumn<OrvelTest::HostileSample>("sample");
        for (const OrvelTest::HostileSample &sample : OrvelTest::hostileSamples())
            QTest::newRow(sample.name) << sample;
    }
    void hostileDocumentsAreShownAsTheyAre()
    {
        QFETCH(OrvelTest::HostileSample, sample);
        Request r = request(Window::SignatureConfirm);
        r.data = sample.data;
        r.rtf = sample.rtf;
        SignatureConfirmWindow window(r);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        checkShown(shownText(&window), sample.shown, sample.absent);
        QCOMPARE(window.signButton() != nullptr, sample.signable);
        // The keys read the data at once.
        QCOMPARE(QApplication::focusWidget(), window.textViews().front());
        // Not even a text holding nothing but the same hidden text as a
        // message gets past.
        r.message = sample.data;
        MessageWindow message(r);
        message.show();
        checkShown(shownText(&message), {}, sample.absent);
    }

    void certificatesAreNamedByTheirOwnFields()
    {
        const OrvelTest::SpoofedCertificates made;
        Request r = request(Window::CertificateSelect);
        for (const std::string *der : {&made.ouHoldsCommonName, &made.lineFeedInCommonName, &made.bidiInCommonName,
                                       &made.forgedIssuer, &made.longSubject})
            r.certificates.push_back({*der, "CN = Jiří Novák", "2027-01-01", "2026-12-01", 30, false, false});
        r.certificates.erase(r.certificates.begin(), r.certificates.begin() + 3);
        CertificateSelectWindow select(r, 0);
        const auto cell = [&](int row, int column) { return select.table()->model()->index(row, column).data().toString(); };
        QVERIFY(cell(0, 0).startsWith(QStringLiteral("Mallory · OU = \"x, CN = Jiří Novák, y\"")));
        QCOMPARE(cell(1, 0), QStringLiteral("Mallory⟨U+000A⟩O = Česká národní banka · C = CZ"));
        QCOMPARE(cell(2, 0), QStringLiteral("Jan ⟨U+202E⟩káváN"));
        QCOMPARE(cell(3, 1), QStringLiteral("Evil CA"));
        checkShown(shownText(&select), {"holds characters"}, {});

        // The signature window: the whole subject, wrapped, and the validity.
        r.selected = 4;
        SignatureConfirmWindow signature(r);
        const QString row = signature.certificateText()->toPlainText();
        QVERIFY2(row.contains(QStringLiteral("OU = \"Pobočka Brno, Purkyňova 2961-91a\", CN = Jiří Novák")), qPrintable(row));
        QVERIFY(row.contains(QStringLiteral("Valid until: 2027-01-01")));

        // The certificate window: the forged line stays on the common name's.
        CertificateViewer viewer(r, made.lineFeedInCommonName);
        checkShown(shownText(&viewer), {"CN = Mallory⟨U+000A⟩O = Česká národní banka"}, {"\nO = Česká"});
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
                QVERIFY(window->problemText().contains(QStringLiteral("Wrong password")));
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
        QVERIFY(window.problemText().contains(QStringLiteral("Not a PKCS#12")));
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
