#include "FileTableModel.h"

#include "FileIcons.h"
#include "ListUtility.h"
#include "MyDocument.h"
#include "ProblemList.h"
#include "UiText.h"
#include "VXControllerModel.h"

#include <QBrush>
#include <QDataStream>
#include <QFileInfo>
#include <QHash>
#include <QIODevice>
#include <QMimeData>
#include <QPointer>
#include <QTimer>
#include <QUrl>

FileTableModel::FileTableModel(MyDocument *document, QObject *parent)
    : QAbstractTableModel(parent), m_document(document), m_files(document->files()), m_names(shownNames(m_files))
{
    connect(document, &MyDocument::filesChanged, this, &FileTableModel::reload);
    // Entries post their check marks one by one, thousands of them while a bundle is read:
    // the rows are repainted once per pass of the event loop, not once per entry.
    connect(document, &MyDocument::entryModified, this, &FileTableModel::refreshStatus);
    connect(document, &MyDocument::searchPerformed, this, &FileTableModel::refreshFound);
}

// Two files of one name (Localizable.strings of the application and of a framework, or of two
// language folders) are told apart by as many of their last folders as it takes.
QStringList FileTableModel::shownNames(const QList<LocFilePtr> &files)
{
    QList<QStringList> parts;
    QList<int> depth;
    for (const LocFilePtr &f : files) {
        parts.append(f->path().split(u'/', Qt::SkipEmptyParts));
        depth.append(1);
    }
    const auto nameOf = [&](qsizetype i) { return parts[i].mid(std::max<qsizetype>(0, parts[i].size() - depth[i])).join(u'/'); };
    for (bool changed = true; changed;) {
        changed = false;
        QHash<QString, int> count;
        for (qsizetype i = 0; i < parts.size(); ++i) ++count[nameOf(i)];
        for (qsizetype i = 0; i < parts.size(); ++i)
            if (count.value(nameOf(i)) > 1 && depth[i] < parts[i].size()) {
                ++depth[i];
                changed = true;
            }
    }
    QStringList names;
    for (qsizetype i = 0; i < parts.size(); ++i) names.append(nameOf(i));
    return names;
}

void FileTableModel::reload()
{
    beginResetModel();
    m_files = m_document->files();
    m_names = shownNames(m_files);
    m_summaries.clear();
    m_counted.clear();
    m_changed.clear();  // their files may be gone, and they with them
    m_quality.clear();
    endResetModel();
}

void FileTableModel::refreshStatus(const LocEntry *changed)
{
    if (m_files.isEmpty()) return;
    if (changed && m_counted.contains(changed)) m_changed.append(changed);
    else m_changedUnknown = true;
    if (m_refreshPending) return;
    m_refreshPending = true;
    QTimer::singleShot(0, this, [this] {
        m_refreshPending = false;
        if (std::exchange(m_changedUnknown, false) || m_changed.size() > 1000) {
            m_summaries.clear();
            m_counted.clear();
        } else {
            for (const LocEntry *entry : std::as_const(m_changed)) {
                Counted &counted = m_counted[entry];
                const Qa::Severity now = m_quality.severity(*entry);
                const auto sum = m_summaries.find(counted.file);
                if (sum != m_summaries.end() && now != counted.severity) {
                    if (counted.severity == Qa::Severity::Error) --sum->errors;
                    else if (counted.severity == Qa::Severity::Warning) --sum->warnings;
                    if (now == Qa::Severity::Error) ++sum->errors;
                    else if (now == Qa::Severity::Warning) ++sum->warnings;
                }
                counted.severity = now;
            }
        }
        m_changed.clear();
        if (!m_files.isEmpty()) emit dataChanged(index(0, 0), index(int(m_files.size()) - 1, ColumnCount - 1));
    });
}

void FileTableModel::refreshFound()
{
    if (!m_files.isEmpty()) emit dataChanged(index(0, FoundColumn), index(int(m_files.size()) - 1, FoundColumn), {Qt::DisplayRole});
}

LocFilePtr FileTableModel::fileAt(int row) const
{
    return row >= 0 && row < m_files.size() ? m_files.at(row) : nullptr;
}

int FileTableModel::rowOfFile(const LocFile *file) const
{
    for (int i = 0; i < m_files.size(); ++i)
        if (m_files.at(i).get() == file) return i;
    return -1;
}

int FileTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_files.size());
}

int FileTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FileTableModel::data(const QModelIndex &index, int role) const
{
    const LocFilePtr file = fileAt(index.row());
    if (!file) return {};
    switch (role) {
    case Qt::DisplayRole:
        if (index.column() == FoundColumn)
            return m_document->isSearching() ? QVariant(int(file->entries().size())) : QVariant();
        return index.column() == NameColumn ? m_names.value(index.row(), file->fileName()) : file->status();
    case Qt::ForegroundRole:
        if (file->color() == EntryColor::Red) return QBrush(Qt::red);
        return {};
    case Qt::DecorationRole:
        if (index.column() == NameColumn) {
            const Qa::Severity worst = summary(*file).worst();
            // A file with problems shows them instead of its kind: the more urgent news.
            if (worst != Qa::Severity::None) return problemIcon(worst);
            return fileIcon(file->path());
        }
        return {};
    case Qt::ToolTipRole: {
        QStringList lines{file->path()};
        if (!file->initError().isEmpty()) lines.append(file->initError());
        lines.append(file->warnings());
        const Qa::FileSummary problems = summary(*file);
        if (problems.errors)
            lines.append(countedText(problems.errors, tr("1 entry with an error"), tr("%1 entries with errors")));
        if (problems.warnings)
            lines.append(countedText(problems.warnings, tr("1 entry with warnings"), tr("%1 entries with warnings")));
        return lines.join(u'\n');
    }
    case Qt::TextAlignmentRole:
        if (index.column() != NameColumn) return int(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    default:
        return {};
    }
}

Qa::FileSummary FileTableModel::summary(const LocFile &file) const
{
    const auto found = m_summaries.constFind(&file);
    if (found != m_summaries.cend()) return *found;
    Qa::FileSummary sum;
    m_counted.reserve(m_counted.size() + file.allEntries().size());
    for (const LocEntryPtr &e : file.allEntries()) {
        const Qa::Severity severity = m_quality.severity(*e);
        m_counted.insert(e.get(), {&file, severity});
        if (severity == Qa::Severity::Error) ++sum.errors;
        else if (severity == Qa::Severity::Warning) ++sum.warnings;
    }
    return *m_summaries.insert(&file, sum);
}

QVariant FileTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    if (section == FoundColumn) return tr("Found");
    return section == NameColumn ? tr("File") : tr("Status");
}

Qt::ItemFlags FileTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled;
}

QStringList FileTableModel::mimeTypes() const
{
    return {dragRowTypeName(), QStringLiteral("text/uri-list")};
}

QMimeData *FileTableModel::mimeData(const QModelIndexList &indexes) const
{
    QList<int> rows;
    for (const QModelIndex &i : indexes)
        if (!rows.contains(i.row())) rows.append(i.row());
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << quint64(quintptr(this)) << rows;
    auto *data = new QMimeData;
    data->setData(dragRowTypeName(), bytes);
    return data;
}

QStringList FileTableModel::acceptedPaths(const QMimeData *data)
{
    QStringList paths;
    if (!data || !data->hasUrls()) return paths;
    const QStringList accepted = acceptableFileTypes();
    for (const QUrl &url : data->urls()) {
        if (!url.isLocalFile()) continue;
        QString path = url.toLocalFile();
        while (path.size() > 1 && path.endsWith(u'/')) path.chop(1);
        if (accepted.contains(QFileInfo(path).suffix())) paths.append(path);
    }
    return paths;
}

namespace {

// The rows of a drag that started in `model`; empty for another table's drag.
QList<int> ownRows(const QMimeData *data, const FileTableModel *model)
{
    QByteArray bytes = data->data(FileTableModel::dragRowTypeName());
    QDataStream in(&bytes, QIODevice::ReadOnly);
    quint64 source = 0;
    QList<int> rows;
    in >> source >> rows;
    if (in.status() != QDataStream::Ok || source != quint64(quintptr(model))) return {};
    return rows;
}

}  // namespace

bool FileTableModel::canDropMimeData(const QMimeData *data, Qt::DropAction, int, int, const QModelIndex &parent) const
{
    // Onto a row is refused; between rows or onto the table as a whole is taken.
    if (!data || parent.isValid()) return false;
    if (data->hasFormat(dragRowTypeName())) return !ownRows(data, this).isEmpty();
    return !acceptedPaths(data).isEmpty();
}

bool FileTableModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                                  const QModelIndex &parent)
{
    if (!canDropMimeData(data, action, row, column, parent)) return false;
    if (data->hasFormat(dragRowTypeName())) {
        const int to = row < 0 ? int(m_files.size()) : row;
        m_document->setFiles(movedRows(m_document->files(), ownRows(data, this), to));
        return true;
    }
    const QStringList paths = acceptedPaths(data);
    QPointer<MyDocument> document(m_document);
    QTimer::singleShot(100, document, [document, paths] {
        if (document) document->addFiles(paths);
    });
    return true;
}
