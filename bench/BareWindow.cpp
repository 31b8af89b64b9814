// What any program of this toolkit costs: an empty window of the main window's size.

#include <QApplication>
#include <QMainWindow>

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    window.resize(1280, 820);
    window.show();
    return QApplication::exec();
}
