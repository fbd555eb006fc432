#pragma once
// The panel shown while a document adds or exports files: file n of N and a Cancel button that
// asks the document to stop after the file at hand. It is window-modal, so the window repaints
// and the button answers between two files while nothing else can start.

#include <QObject>
#include <QPointer>
#include <QProgressDialog>
#include <QString>

class MyDocument;
class QWidget;

class ProgressPanel : public QObject {
    Q_OBJECT
public:
    ProgressPanel(MyDocument *document, QWidget *window);

    // The panel of the work under way, if any.
    QProgressDialog *dialog() const { return m_dialog; }
    // While the work asks something (a previous version, a folder), the panel steps aside: a
    // window-modal panel shown over the question would block it.
    void pause();
    void resume();

private:
    void loadingChanged(bool on);
    void advance(int done, int total);
    void show();

    MyDocument *m_document;
    QString m_name;  // of the file at hand
    QWidget *m_window;
    QPointer<QProgressDialog> m_dialog;
    bool m_loading = false;
    int m_paused = 0;
};
