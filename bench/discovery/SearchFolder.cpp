// Searches a folder for encrypted folders, as the application does, and prints what it finds:
//     nimbrel_search FOLDER
#include "discovery/NBCloudServiceDiscoveryController.h"

#include <cstdio>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: nimbrel_search FOLDER\n", stderr);
        return 2;
    }
    const QUrl folder = QUrl::fromLocalFile(QString::fromLocal8Bit(argv[1]));
    const nimbrel::NBCloudServiceDiscoveryController controller;
    for (const QUrl &url : controller.nmFoldersWithURL(folder))
        std::puts(url.toLocalFile().toUtf8().constData());
    return 0;
}
