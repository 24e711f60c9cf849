#include "audience/backgroundimage.h"
#include "audience/ui/audiencepreview.h"
#include "audience/ui/audiencescreen.h"
#include "core/appsettings.h"
#include "core/settings.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QMenu>
#include <QTest>

class TestPreview : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<TestWorkspace> m_ws;

    QString picture(const QString& name, QColor colour) {
        QImage img(160, 90, QImage::Format_RGB32);
        img.fill(colour);
        const QString path = m_ws->dataFolder() + "pictures/" + name;
        QDir().mkpath(m_ws->dataFolder() + "pictures");
        img.save(path);
        return path;
    }
    static QColor centre(const BackgroundPicture& p) {
        const QImage img = p.picture().toImage();
        return img.isNull() ? QColor() : QColor(img.pixel(img.width() / 2, img.height() / 2));
    }

private slots:
    void init() {
        Cfg = AppSettings{};
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>(false);
    }
    void cleanup() {
        m_ws.reset();
        m_prompts.reset();
    }

    void aNewPictureReachesBothWindowsAtOnce() {
        AudienceScreen audience;
        audience.window();
        AudiencePreview preview;
        preview.setAudience(&audience);
        preview.resize(290, 193);
        const QString red = picture("red.jpg", Qt::red);
        m_prompts->answer(red);
        preview.mnuBGSelectImage->trigger();
        QCOMPARE(m_prompts->calls.value(0).title, QString("Choose an image to display"));
        QCOMPARE(settings::readText(keys::MainImage), red);
        QCOMPARE(settings::readText(keys::BGImagePath), m_ws->dataFolder() + "pictures/");
        QVERIFY(centre(preview).red() > 240 && centre(preview).green() < 20);
        QVERIFY(centre(*audience.loaded()->fraLyrics).red() > 240);
        // The next dialog opens in the folder of the last picture.
        m_prompts->answer(QString());
        preview.mnuBGSelectImage->trigger();
        QCOMPARE(m_prompts->calls.value(1).text, m_ws->dataFolder() + "pictures/");
        QCOMPARE(settings::readText(keys::MainImage), red);

        preview.mnuBGClearImage->trigger();
        QVERIFY(preview.picture().isNull());
        QVERIFY(audience.loaded()->fraLyrics->picture().isNull());
    }

    void aFileThatIsNoPictureIsRefusedAndChangesNothing() {
        const QString good = picture("good.png", Qt::green);
        settings::writeText(keys::MainImage, good);
        AudiencePreview preview;
        preview.resize(200, 100);
        preview.showFile(good);
        const QString bad = m_ws->dataFolder() + "notes.jpg";
        QFile f(bad);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("not a picture");
        f.close();
        m_prompts->answer(bad);
        QVERIFY(!backgroundimage::SelectImage());
        QCOMPARE(m_prompts->boxTitles(), QStringList{"GDI+ Module"});
        QCOMPARE(m_prompts->calls.last().text, "Error loading picture " + bad);
        QCOMPARE(settings::readText(keys::MainImage), good);
        QVERIFY(centre(preview).green() > 240);
    }

    void theRightButtonPopsUpThePictureMenu() {
        AudiencePreview preview;
        preview.resize(200, 100);
        preview.show();
        QVERIFY(QTest::qWaitForWindowExposed(&preview));
        QTest::mouseClick(&preview, Qt::LeftButton, {}, QPoint(50, 50));
        QVERIFY(!preview.mnuBGImage->isVisible());
        QTest::mouseClick(&preview, Qt::RightButton, {}, QPoint(50, 50));
        QTRY_VERIFY(preview.mnuBGImage->isVisible());
        preview.mnuBGImage->hide();
    }

    void resetPositionBringsTheWindowToTheMainWindow() {
        AudienceScreen audience;
        audience.window().move(5000, 3000);
        QWidget main;
        main.move(40, 30);
        AudiencePreview preview(&main);
        preview.setAudience(&audience);
        preview.mnuBGResetPosition->trigger();
        QCOMPARE(audience.window().pos(), main.frameGeometry().topLeft());
    }
};

KV_TEST_CLASS(TestPreview)
#include "tst_preview.moc"
