#pragma once

#include "engine/duplicate/SimpleNodeData.h"

#include <QList>
#include <memory>

namespace velmora {

// A node of the duplicate result tree. Children are shared so that a
// category tree can hold the same group nodes as the whole tree; a node's
// parent is the first tree it was inserted into.
class SimpleTreeNode {
public:
    using Pointer = std::shared_ptr<SimpleTreeNode>;

    explicit SimpleTreeNode(SimpleNodeData data) : m_data(std::move(data)) {}
    static Pointer create(SimpleNodeData data) { return std::make_shared<SimpleTreeNode>(std::move(data)); }

    SimpleNodeData& data() { return m_data; }
    const SimpleNodeData& data() const { return m_data; }
    SimpleTreeNode* parent() const { return m_parent; }
    const QList<Pointer>& children() const { return m_children; }
    bool isLeaf() const { return m_data.isLeaf; }

    void insertChild(const Pointer& child, qsizetype index) {
        if (!child->m_parent) child->m_parent = this;
        m_children.insert(index, child);
    }
    void appendChild(const Pointer& child) { insertChild(child, m_children.size()); }
    // Takes the child out of this node's children; false when it is not one.
    bool removeChild(const SimpleTreeNode* child) {
        for (qsizetype i = 0; i < m_children.size(); ++i) {
            if (m_children[i].get() != child) continue;
            if (child->m_parent == this) m_children[i]->m_parent = nullptr;
            m_children.removeAt(i);
            return true;
        }
        return false;
    }

private:
    SimpleNodeData m_data;
    SimpleTreeNode* m_parent = nullptr;
    QList<Pointer> m_children;
};

}  // namespace velmora
