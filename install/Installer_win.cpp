#include "install/Installer_win.h"

ProcessResult InstallProcess::Process(ProcessContext& context) {
    context.SetStatus(m_request.folder.View());
    return ProcessResult::Done;
}
