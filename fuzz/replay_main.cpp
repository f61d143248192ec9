// Runs a fuzz target without libFuzzer: every file of the corpus folders given on the command
// line, then a fixed series of mutations of them, so that a run is the same on every machine.
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdint>
#include <cstdio>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

class Mutator
{
public:
    quint32 next()
    {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 17;
        m_state ^= m_state << 5;
        return m_state;
    }
    QByteArray mutate(QByteArray input)
    {
        const int edits = 1 + int(next() % 4);
        for (int e = 0; e < edits; ++e) {
            const qsizetype at = input.isEmpty() ? 0 : qsizetype(next() % quint32(input.size()));
            switch (next() % 5) {
            case 0: // flip a bit
                if (!input.isEmpty())
                    input[at] = char(input.at(at) ^ char(1 << (next() % 8)));
                break;
            case 1: // insert a byte that tends to matter to parsers
                input.insert(at, "'\"#%*,.;:-+eE0{}[]\\\n "[next() % 22]);
                break;
            case 2: // delete a run
                input.remove(at, qsizetype(1 + next() % 8));
                break;
            case 3: // duplicate a run
                input.insert(at, input.mid(at, qsizetype(1 + next() % 16)));
                break;
            default: // a random byte
                if (!input.isEmpty())
                    input[at] = char(next());
                break;
            }
        }
        return input;
    }

private:
    quint32 m_state = 0x5eed1234u;
};

// With ZELKON_FUZZ_LAST set, each input is written to that file before it runs: after a fault
// the file holds the input that found it, ready to be kept in the corpus.
void run(const QByteArray &input)
{
    static const QString last = qEnvironmentVariable("ZELKON_FUZZ_LAST");
    if (!last.isEmpty()) {
        QFile file(last);
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(input);
    }
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.constData()),
                           size_t(input.size()));
}

} // namespace

int main(int argc, char *argv[])
{
    std::vector<QByteArray> corpus;
    for (int i = 1; i < argc; ++i) {
        const QFileInfo info(QString::fromLocal8Bit(argv[i]));
        const QStringList files = info.isDir()
            ? QDir(info.filePath()).entryList(QDir::Files, QDir::Name)
            : QStringList{info.fileName()};
        for (const QString &name : files) {
            QFile file(info.isDir() ? QDir(info.filePath()).filePath(name) : info.filePath());
            if (file.open(QIODevice::ReadOnly))
                corpus.push_back(file.readAll());
        }
    }
    corpus.push_back(QByteArray());
    for (const QByteArray &input : corpus)
        run(input);
    Mutator mutator;
    // A target whose every input is a whole session asks for fewer rounds.
    const int rounds = qEnvironmentVariableIsSet("ZELKON_FUZZ_ROUNDS")
        ? qEnvironmentVariableIntValue("ZELKON_FUZZ_ROUNDS")
        : 3000;
    for (int i = 0; i < rounds; ++i)
        run(mutator.mutate(corpus[size_t(mutator.next() % corpus.size())]));
    std::printf("%zu corpus inputs and %d mutations ran without a fault\n", corpus.size(), rounds);
    return 0;
}
