// Within the node table alone.
#pragma once

#include "fs/NodeTable.h"

namespace nimbrel {

// Keeps a node from going with what only kept it.
class NodeTable::Hold final
{
public:
    Hold(NodeTable &table, Node &node) noexcept : _table(table), _node(node) { ++_node.lookups; }
    ~Hold()
    {
        --_node.lookups;
        _table.dropIfUnused(_node);
    }
    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;

private:
    NodeTable &_table;
    Node &_node;
};

} // namespace nimbrel
