// The baseline of the desktop row: the least a Qt program does to show one
// message box. It quits as soon as the box has been painted once.
#include <QApplication>
#include <QEvent>
#include <QMessageBox>
#include <QTimer>

namespace {

class QuitAfterFirstPaint : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !seen_) {
            seen_ = true;
            QTimer::singleShot(0, qApp, &QApplication::quit);
        }
        return false;
    }

private:
    bool seen_ = false;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    application.installEventFilter(new QuitAfterFirstPaint(&application));
    QMessageBox box(QMessageBox::Information, QStringLiteral("Message"), QStringLiteral("m"), QMessageBox::Ok);
    box.show();
    return application.exec();
}
