#include "scene.h"
#include "show.h"
#include "testrunner.h"

#include <QTest>
#include <memory>

// The evening, scene by scene. Each scene is one row of the table, so that the
// report names the scene that went wrong; a scene plays on what the earlier
// ones left, so after a failure the rest are skipped, not played on a broken stage.
class Rehearsal : public QObject {
    Q_OBJECT

    std::unique_ptr<Show> m_show;
    bool m_broken = false;

private slots:
    void initTestCase() { m_show = std::make_unique<Show>(QStringLiteral(KV_REHEARSAL_DIR)); }

    void scene_data() {
        QTest::addColumn<int>("index");
        for (int i = 0; i < int(scenes().size()); ++i)
            QTest::newRow(
                QStringLiteral("%1 %2").arg(scenes()[i].order).arg(scenes()[i].name).toUtf8().constData())
                << i;
    }

    void scene() {
        QFETCH(int, index);
        if (m_broken)
            QSKIP("an earlier scene went wrong");
        try {
            scenes()[index].play(*m_show);
            m_show->expectNothingUnexpected();
        } catch (const StepFailed&) {
        }
        if (QTest::currentTestFailed()) {
            m_broken = true;
            m_show->shot(QStringLiteral("went-wrong"),
                         QStringLiteral("The stage when the scene went wrong."));
        }
    }

    void cleanupTestCase() { m_show.reset(); }
};

KV_TEST_CLASS(Rehearsal)
#include "tst_rehearsal.moc"
