// Keys, requests and what certificate services answer; the file that keeps them.
#include "services/cloud/Identity.h"

#include "services/cloud/Configuration.h"
#include "services/cloud/Store.h"
#include "tests/support/Text.h"

#include <QtTest>

#include <openssl/ec.h>
#include <sys/stat.h>

using namespace cloud;

namespace {

constexpr long DAY = 86400;

std::string derOf(PKCS7 *bag)
{
    unsigned char *bytes = nullptr;
    const int size = i2d_PKCS7(bag, &bytes);
    const std::string der(reinterpret_cast<char *>(bytes), static_cast<std::size_t>(size));
    OPENSSL_free(bytes);
    return der;
}

// An authority that signs for whatever key.
X509Pointer certify(EVP_PKEY *key, const char *name, long from, long until)
{
    static const Key authority(EVP_EC_gen("P-256"));
    X509Pointer made(X509_new());
    X509_set_pubkey(made.get(), key);
    X509_gmtime_adj(X509_getm_notBefore(made.get()), from);
    X509_gmtime_adj(X509_getm_notAfter(made.get()), until);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(made.get()), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char *>(name), -1, -1, 0);
    X509_sign(made.get(), authority.get(), EVP_sha256());
    return made;
}

// As a service answers, in lines.
std::string answer(const std::vector<X509 *> &certificates)
{
    const Pkcs7 bag(PKCS7_new());
    PKCS7_set_type(bag.get(), NID_pkcs7_signed);
    PKCS7_content_new(bag.get(), NID_pkcs7_data);
    for (X509 *each : certificates)
        PKCS7_add_certificate(bag.get(), each);
    const std::string der = derOf(bag.get());
    const QByteArray text = QByteArray::fromStdString(der).toBase64();
    QByteArray lines;
    for (int at = 0; at < text.size(); at += 64)
        lines += text.mid(at, 64) + "\r\n";
    return lines.toStdString();
}

std::time_t now()
{
    return std::time(nullptr);
}

} // namespace

class IdentityTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void aRequestIsSignedAndNamesTheDevice()
    {
        const Key key = readKey(makeKey());
        const auto former =
            takeAnswer(key.get(), answer({certify(key.get(), "as issued", 0, DAY).get()}), now());
        QVERIFY(former);
        for (const bool isRenewal : {false, true}) {
            const auto text = makeRequest(key.get(), "dev 1", isRenewal ? &*former : nullptr);
            const QByteArray der = QByteArray::fromBase64(QByteArray::fromStdString(text));
            auto *at = reinterpret_cast<const unsigned char *>(der.constData());
            const Request request(d2i_X509_REQ(nullptr, &at, der.size()));
            QVERIFY(request);
            QCOMPARE(X509_REQ_verify(request.get(), key.get()), 1);
            char name[64] = "";
            X509_NAME_get_text_by_NID(X509_REQ_get_subject_name(request.get()), NID_commonName,
                                      name, sizeof name);
            QCOMPARE(name, isRenewal ? "as issued" : "dev 1");
        }
    }

    void anAnswerIsTakenForItsOwnKeyAlone()
    {
        const Key key = readKey(makeKey());
        const Key other = readKey(makeKey());
        const X509Pointer own = certify(key.get(), "own", -DAY, 2 * DAY);
        const X509Pointer between = certify(other.get(), "between", -DAY, DAY);
        const X509Pointer over = certify(key.get(), "over", -2 * DAY, -DAY);
        const auto taken = takeAnswer(key.get(), answer({between.get(), own.get()}), now());
        QVERIFY(taken);
        QVERIFY(readIdentity(taken->pem)); // the own one first
        QCOMPARE(readCertificates(taken->pem).size(), std::size_t(2));
        QVERIFY(std::abs(taken->renewal() - (now() + DAY)) < 5);
        QVERIFY(!taken->isOver(now()) && taken->isOver(now() + 3 * DAY));
        const std::string good = answer({own.get()});
        for (const std::string &bad :
             {answer({between.get()}), answer({over.get()}), answer({}), std::string(),
              std::string("%%%%"), good.substr(0, good.size() / 2), "A" + good,
              answer(std::vector<X509 *>(9, own.get()))})
            QVERIFY(!takeAnswer(key.get(), bad, now()));
    }

    void theFileKeepsAPairForOneCloud()
    {
        QTemporaryDir folder;
        const std::string path = folder.filePath("identity.pem"_s).toStdString();
        QFile leftover(folder.filePath("identity.pem.XYZ123"_s));
        QVERIFY(leftover.open(QIODevice::WriteOnly));
        const Store store(path);
        QVERIFY(!leftover.exists());
        QVERIFY(!store.load("a:1", "dev"));
        const Key key = readKey(makeKey());
        const auto identity =
            takeAnswer(key.get(), answer({certify(key.get(), "own", 0, DAY).get()}), now());
        QVERIFY(store.keep("a:1", "dev", *identity));
        struct stat status
        {
        };
        QCOMPARE(::stat(path.c_str(), &status), 0);
        QCOMPARE(status.st_mode & 0777U, 0600U);
        QCOMPARE(store.load("a:1", "dev")->pem, identity->pem);
        QVERIFY(!store.load("b:1", "dev") && !store.load("a:1", "dev2"));
        // Whatever is in the file, it is a pair or none.
        QFile file(QString::fromStdString(path));
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QByteArray whole = file.readAll();
        for (qint64 size = 0; size < whole.size() - 1; size += 17) {
            QVERIFY(file.resize(size));
            QVERIFY(!store.load("a:1", "dev"));
            file.seek(0);
            file.write(whole);
            file.flush();
        }
        QVERIFY(!Store("/nowhere/identity.pem").keep("a:1", "dev", *identity));
    }

    void whatCannotBeIsRefused()
    {
        const Configuration good{
            "mqtt.example.com", "10.0.0.1",     "time", 8883, 443, "dev", "salt",
            "kvhmi/CQ/dev",     "kvhmi/CP/dev", ""};
        QVERIFY(isSound(good));
        const auto with = [&](auto member, const auto &value) {
            Configuration bad = good;
            bad.*member = value;
            return bad;
        };
        using C = Configuration;
        for (const C &bad :
             {with(&C::server, ""), with(&C::server, "ssl://host"), with(&C::server, "a b"),
              with(&C::certificateServer, "host/../x"), with(&C::timeServer, "-x"),
              with(&C::timeServer, std::string(254, 'a')), with(&C::port, 0),
              with(&C::certificatePort, 65536), with(&C::device, ""), with(&C::device, "a:b"),
              with(&C::device, std::string(65, 'a')), with(&C::salt, "\n"),
              with(&C::requestTopic, "kvhmi/#"), with(&C::responseTopic, ""),
              with(&C::trust, std::string(262145, 'a'))})
            QVERIFY(!isSound(bad));
    }
};

QTEST_GUILESS_MAIN(IdentityTest)
#include "IdentityTest.moc"
