// Runs the property-list test classes in turn; the exit code counts the failed classes.
#include <QCoreApplication>

int runReaderTests(int argc, char **argv);
int runWriterTests(int argc, char **argv);
int runHostileTests(int argc, char **argv);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    int failed = 0;
    for (auto run : {runReaderTests, runWriterTests, runHostileTests})
        failed += run(argc, argv) != 0;
    return failed;
}
