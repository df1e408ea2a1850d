#include "KrldvModule.h"

#include <QApplication>
#include <QMainWindow>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    if (!krldvModuleEntry(KRLDV_MODULE_ATTACH))
        return 1;
    QMainWindow window;
    window.setWindowTitle("KOREL5");
    window.show();
    const int rc = app.exec();
    krldvModuleEntry(KRLDV_MODULE_DETACH);
    return rc;
}
