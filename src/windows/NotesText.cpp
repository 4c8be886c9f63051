#include "windows/NotesText.h"

#include "windows/WebAddress.h"

#include <QRegularExpression>
#include <QSet>
#include <QUrl>

namespace nimbrel {

namespace {

// What isn't shown with all it holds; then a tag, with its slash, its name and the rest; then a "<"
// that begins nothing.
const QString tagPattern =
    QStringLiteral("<!--.*?(?:-->|$)"
                   "|<(?<whole>style|script|title|head)\\b.*?(?:</\\k<whole>\\b[^>]*>|$)"
                   "|<(?<slash>/?)(?<name>[a-z][a-z0-9]*)(?<rest>[^>]*)(?:>|$)"
                   "|<[!?][^>]*(?:>|$)"
                   "|(?<stray><)");

bool isFormatting(const QString &name)
{
    static const QSet<QString> names{
        QStringLiteral("a"),    QStringLiteral("b"),          QStringLiteral("br"),
        QStringLiteral("code"), QStringLiteral("div"),        QStringLiteral("em"),
        QStringLiteral("h1"),   QStringLiteral("h2"),         QStringLiteral("h3"),
        QStringLiteral("h4"),   QStringLiteral("h5"),         QStringLiteral("h6"),
        QStringLiteral("hr"),   QStringLiteral("i"),          QStringLiteral("li"),
        QStringLiteral("ol"),   QStringLiteral("p"),          QStringLiteral("pre"),
        QStringLiteral("s"),    QStringLiteral("strong"),     QStringLiteral("sub"),
        QStringLiteral("sup"),  QStringLiteral("tt"),         QStringLiteral("u"),
        QStringLiteral("ul"),   QStringLiteral("blockquote"), QStringLiteral("dd"),
        QStringLiteral("dl"),   QStringLiteral("dt")};
    return names.contains(name);
}

bool isEndOfLine(const QString &name)
{
    return name == QLatin1String("tr") || name == QLatin1String("table");
}

// The link's address as an attribute; empty for none that a browser may open.
QString linkAttribute(const QString &attributes)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\bhref\\s*=\\s*(?:\"([^\"]*)\"|'([^']*)'|([^\\s\"'>]+))"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(attributes);
    const QUrl url(match.captured(match.lastCapturedIndex())
                       .replace(QLatin1String("&amp;"), QLatin1String("&")));
    if (!match.hasMatch() || !isWebAddress(url))
        return {};
    return QStringLiteral(" href=\"%1\"").arg(url.toString(QUrl::FullyEncoded).toHtmlEscaped());
}

QString replacement(const QRegularExpressionMatch &match)
{
    if (!match.captured(QStringLiteral("stray")).isEmpty())
        return QStringLiteral("&lt;");
    const QString name = match.captured(QStringLiteral("name")).toLower();
    const QString slash = match.captured(QStringLiteral("slash"));
    if (isEndOfLine(name))
        return QStringLiteral("<br>");
    if (!isFormatting(name))
        return QStringLiteral(" ");
    const bool isLink = name == QLatin1String("a") && slash.isEmpty();
    const QString link = isLink ? linkAttribute(match.captured(QStringLiteral("rest"))) : QString();
    return u'<' + slash + name + link + u'>';
}

} // namespace

QString plainlyFormatted(const QString &html)
{
    static const QRegularExpression pattern(tagPattern,
                                            QRegularExpression::CaseInsensitiveOption |
                                                QRegularExpression::DotMatchesEverythingOption);
    QString text;
    qsizetype end = 0;
    for (auto matches = pattern.globalMatch(html); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        text += QStringView(html).sliced(end, match.capturedStart() - end);
        text += replacement(match);
        end = match.capturedEnd();
    }
    // No "<" is left here, unless the search gave up.
    return text + html.sliced(end).replace(u'<', QLatin1String("&lt;"));
}

} // namespace nimbrel
