#include "TerminalPrompt.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <strings.h>
#include <fcntl.h>
#include <filesystem>
#include <termios.h>
#include <unistd.h>

#include <tessera/LuSVNSSLClientCertificateCredentials.h>
#include <tessera/LuSVNSSLClientCertificatePasswordCredentials.h>
#include <tessera/LuSVNSimpleCredentials.h>
#include <tessera/LuSVNUsernameCredentials.h>

#include "Options.h"

namespace {

// The terminal's settings while a secret is typed, put back should the user
// interrupt with Ctrl-C.
int hiddenDescriptor = -1;
termios hiddenSaved{};

extern "C" void restoreTerminal(int signal)
{
    ::tcsetattr(hiddenDescriptor, TCSANOW, &hiddenSaved);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// The controlling terminal, as svn prompts there even when standard input
// or error are redirected; standard input and error without one. Read a
// byte at a time, so that nothing typed for a later question is taken.
class Terminal {
public:
    explicit Terminal(const std::function<void()>& beforePrompting)
    {
        if (beforePrompting)
            beforePrompting();
        own_ = ::open("/dev/tty", O_RDWR | O_CLOEXEC);
        in_ = own_ >= 0 ? own_ : STDIN_FILENO;
        out_ = own_ >= 0 ? own_ : STDERR_FILENO;
    }
    ~Terminal()
    {
        if (own_ >= 0)
            ::close(own_);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    void write(const std::string& text)
    {
        std::size_t written = 0;
        while (written < text.size()) {
            const ssize_t count = ::write(out_, text.data() + written, text.size() - written);
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return;
            written += static_cast<std::size_t>(count);
        }
    }

    // The answer without its line end; nullopt at the end of input.
    std::optional<std::string> ask(const std::string& question)
    {
        write(question);
        std::string answer;
        int c = 0;
        while ((c = get()) != EOF && c != '\n')
            answer += static_cast<char>(c);
        if (c == EOF && answer.empty())
            return std::nullopt;
        return answer;
    }

    // A secret: each key typed shows as a star, a backspace takes the last
    // one back, as svn does on a terminal.
    std::optional<std::string> askHidden(const std::string& question)
    {
        termios saved{};
        if (::tcgetattr(in_, &saved) != 0)
            return ask(question);
        write(question);
        termios raw = saved;
        raw.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON);
        raw.c_cc[VMIN] = 1;
        raw.c_cc[VTIME] = 0;
        hiddenDescriptor = in_;
        hiddenSaved = saved;
        const auto previous = std::signal(SIGINT, restoreTerminal);
        ::tcsetattr(in_, TCSANOW, &raw);
        std::string answer;
        int c = 0;
        while ((c = get()) != EOF && c != '\n' && c != '\r' && c != saved.c_cc[VEOF]) {
            if (c == saved.c_cc[VERASE] || c == '\b' || c == 0x7f) {
                if (!answer.empty()) {
                    answer.pop_back();
                    write("\b \b");
                }
            } else {
                answer += static_cast<char>(c);
                write("*");
            }
        }
        ::tcsetattr(in_, TCSANOW, &saved);
        std::signal(SIGINT, previous);
        write("\n\n");
        if (c != '\n' && c != '\r')
            return std::nullopt;
        return answer;
    }

    void showRealm(const std::optional<std::string>& realm)
    {
        if (realm)
            write("Authentication realm: " + *realm + "\n");
    }

private:
    int get()
    {
        unsigned char c = 0;
        for (;;) {
            const ssize_t count = ::read(in_, &c, 1);
            if (count == 1)
                return c;
            if (count < 0 && errno == EINTR)
                continue;
            return EOF;
        }
    }

    int own_ = -1;
    int in_ = STDIN_FILENO;
    int out_ = STDERR_FILENO;
};

}  // namespace

std::shared_ptr<TesseraTerminalPrompt> TesseraTerminalPrompt::shared()
{
    static const auto prompt = std::make_shared<TesseraTerminalPrompt>();
    return prompt;
}

std::optional<bool> TesseraTerminalPrompt::promptForSimpleCredentials(LuSVNAuthenticationProvider&,
                                                                      LuSVNSimpleCredentials& credentials,
                                                                      const std::optional<std::string>& realm,
                                                                      std::int32_t)
{
    Terminal terminal(beforePrompting_);
    terminal.showRealm(realm);
    // A user name Subversion proposes (--username, the last one used) is
    // taken without asking.
    if (!credentials.username()) {
        auto username = terminal.ask("Username: ");
        if (!username)
            return false;
        credentials.setUsername(std::move(username));
    }
    auto password = terminal.askHidden("Password for '" + *credentials.username() + "': ");
    if (!password)
        return false;
    credentials.setPassword(std::move(password));
    return true;
}

std::optional<bool> TesseraTerminalPrompt::promptForUsernameCredentials(LuSVNAuthenticationProvider&,
                                                                        LuSVNUsernameCredentials& credentials,
                                                                        const std::optional<std::string>& realm,
                                                                        std::int32_t)
{
    Terminal terminal(beforePrompting_);
    terminal.showRealm(realm);
    auto username = terminal.ask("Username: ");
    if (!username)
        return false;
    credentials.setUsername(std::move(username));
    return true;
}

std::optional<bool> TesseraTerminalPrompt::promptForSSLClientCertificateCredentials(
    LuSVNAuthenticationProvider&, LuSVNSSLClientCertificateCredentials& credentials,
    const std::optional<std::string>& realm, std::int32_t)
{
    Terminal terminal(beforePrompting_);
    terminal.showRealm(realm);
    auto path = terminal.ask("Client certificate filename: ");
    if (!path)
        return false;
    credentials.setCertificatePath(std::filesystem::absolute(*path).lexically_normal().string());
    return true;
}

std::optional<bool> TesseraTerminalPrompt::promptForSSLClientCertificatePasswordCredentials(
    LuSVNAuthenticationProvider&, LuSVNSSLClientCertificatePasswordCredentials& credentials,
    const std::optional<std::string>& realm, std::int32_t)
{
    Terminal terminal(beforePrompting_);
    auto passphrase = terminal.askHidden("Passphrase for '" + realm.value_or("") + "': ");
    if (!passphrase)
        return false;
    credentials.setPassword(std::move(passphrase));
    return true;
}

std::string serverTrustQuestion(std::uint32_t failures, const LuSVNCertificate& certificate,
                                const std::string& realm, bool mayStore)
{
    std::string text = "Error validating server certificate for '" + realm + "':\n";
    if (failures & LuSVNSSLFailureUnknownAuthority)
        text += " - The certificate is not issued by a trusted authority. Use the\n"
                "   fingerprint to validate the certificate manually!\n";
    if (failures & LuSVNSSLFailureHostMismatch)
        text += " - The certificate hostname does not match.\n";
    if (failures & LuSVNSSLFailureNotYetValid)
        text += " - The certificate is not yet valid.\n";
    if (failures & LuSVNSSLFailureExpired)
        text += " - The certificate has expired.\n";
    if (failures & LuSVNSSLFailureOther)
        text += " - The certificate has an unknown error.\n";
    text += "Certificate information:\n"
            " - Hostname: " + certificate.hostname() + "\n"
            " - Valid: from " + certificate.validFrom() + " until " + certificate.validTo() + "\n"
            " - Issuer: " + certificate.issuer() + "\n"
            " - Fingerprint: " + certificate.fingerprint() + "\n";
    text += mayStore ? "(R)eject, accept (t)emporarily or accept (p)ermanently? " : "(R)eject or accept (t)emporarily? ";
    return text;
}

std::optional<bool> TesseraTerminalPrompt::promptForAuthenticationErrors(LuSVNAuthenticationProvider&,
                                                                         std::uint32_t failures,
                                                                         const LuSVNCertificate& certificate,
                                                                         const std::optional<std::string>& realm,
                                                                         bool mayStore, bool& permanent)
{
    Terminal terminal(beforePrompting_);
    const auto choice = terminal.ask(serverTrustQuestion(failures, certificate, realm.value_or(""), mayStore));
    const char first = choice && !choice->empty() ? (*choice)[0] : 'r';
    if (first == 't' || first == 'T') {
        permanent = false;
        return true;
    }
    if (mayStore && (first == 'p' || first == 'P')) {
        permanent = true;
        return true;
    }
    return false;
}

std::optional<bool> TesseraTerminalPrompt::maySavePlainTextCredentialsForRealm(
    LuSVNAuthenticationProvider& provider, const std::optional<std::string>& realm)
{
    const TesseraGlobalSettings& settings = tesseraGlobalSettings();
    const char* home = std::getenv("HOME");
    const std::string servers =
        settings.configDir ? *settings.configDir + "/servers" : std::string(home ? home : "") + "/.subversion/servers";
    const bool password = provider.credentialsClass().kind == LuSVNSimpleCredentials::classObject().kind;
    Terminal terminal(beforePrompting_);
    terminal.write(std::string("\n-----------------------------------------------------------------------\n") +
                   (password ? "ATTENTION!  Your password for authentication realm:\n"
                             : "ATTENTION!  Your passphrase for client certificate:\n") +
                   "\n   " + realm.value_or("") +
                   "\n\n"
                   "can only be stored to disk unencrypted!  You are advised to configure\n"
                   "your system so that Subversion can store " +
                   (password ? "passwords" : "passphrase") +
                   " encrypted, if\n"
                   "possible.  See the documentation for details.\n"
                   "\n"
                   "You can avoid future appearances of this warning by setting the value\n" +
                   (password ? "of the 'store-plaintext-passwords' option to either 'yes' or 'no' in\n"
                             : "of the 'store-ssl-client-cert-pp-plaintext' option to either 'yes' or\n'no' in ") +
                   "'" + servers +
                   "'.\n"
                   "-----------------------------------------------------------------------\n");
    std::string question = password ? "Store password unencrypted (yes/no)? " : "Store passphrase unencrypted (yes/no)? ";
    for (;;) {
        const auto answer = terminal.ask(question);
        if (!answer)
            return false;
        if (strcasecmp(answer->c_str(), "yes") == 0)
            return true;
        if (strcasecmp(answer->c_str(), "no") == 0)
            return false;
        question = "Please type 'yes' or 'no': ";
    }
}
