#pragma once
// The process's notification centre: one signal per notification, delivered synchronously
// (direct connections on the main thread), before the posting call returns.

#include <QObject>

class LocEntry;
class LocFile;

class NotificationCenter : public QObject {
    Q_OBJECT
public:
    static NotificationCenter &instance();

    // Names as observers know them, for logs and the command line.
    static constexpr const char *LocEntryHasModified = "LocEntryHasModified";
    static constexpr const char *LocFileFinishReadingFile = "LocFileFinishReadingFile";
    static constexpr const char *VXDocumentHasChanged = "VXDocumentHasChanged";
    static constexpr const char *VXDictWillExportFile = "vXDictWillExportFile";
    static constexpr const char *VXDictExportFileAndAddEntries = "vXDictExportFileAndAddEntries";
    static constexpr const char *VXDictEntryChanged = "vXDictEntryChanged";

    void postLocEntryHasModified(LocEntry *entry) { emit locEntryHasModified(entry); }
    void postLocFileFinishReadingFile(LocFile *file) { emit locFileFinishReadingFile(file); }
    void postDocumentHasChanged(QObject *document) { emit documentHasChanged(document); }
    void postDictWillExportFile(QObject *document) { emit dictWillExportFile(document); }
    void postDictExportFileAndAddEntries(QObject *document) { emit dictExportFileAndAddEntries(document); }
    void postDictEntryChanged(QObject *row) { emit dictEntryChanged(row); }

signals:
    void locEntryHasModified(LocEntry *entry);
    void locFileFinishReadingFile(LocFile *file);
    void documentHasChanged(QObject *document);
    void dictWillExportFile(QObject *document);
    void dictExportFileAndAddEntries(QObject *document);
    void dictEntryChanged(QObject *row);

private:
    NotificationCenter() = default;
};
