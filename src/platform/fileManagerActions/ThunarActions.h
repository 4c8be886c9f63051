// The list of Thunar's custom actions: everybody's, ours among them.
#pragma once

#include "crypto/CHandle.h"

#include <QByteArray>

#include <libxml/tree.h>
#include <optional>
#include <vector>

namespace nimbrel::fileManagerActions {

// What isn't ours stays, in its order.
class ThunarActions final
{
public:
    // Nothing when the text isn't such a list. An empty text is an empty list.
    [[nodiscard]] static std::optional<ThunarActions> read(const QByteArray &text);

    // What ours runs; nothing when it isn't there.
    [[nodiscard]] std::optional<QByteArray> command() const;
    // Puts ours in its old place, else to the end. False without memory.
    [[nodiscard]] bool set(const QByteArray &title, const QByteArray &command);
    // False when there was nothing to remove.
    [[nodiscard]] bool remove();
    // Empty without memory.
    [[nodiscard]] QByteArray text() const;

private:
    using Document = CHandle<xmlDoc, xmlFreeDoc>;
    explicit ThunarActions(Document document) : _document(std::move(document)) {}
    [[nodiscard]] std::vector<xmlNode *> ours() const;

    Document _document;
};

} // namespace nimbrel::fileManagerActions
