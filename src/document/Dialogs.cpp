#include "Dialogs.h"

namespace {

class SilentDialogs : public Dialogs {
public:
    QStringList runOpenPanel(const OpenPanelOptions &) override { return {}; }
    int runAlert(const Alert &) override { return 0; }
    void showAlertSheet(const Alert &) override {}
};

}  // namespace

Dialogs &Dialogs::silent()
{
    static SilentDialogs dialogs;
    return dialogs;
}
