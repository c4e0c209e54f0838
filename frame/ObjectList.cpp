#include "frame/ObjectList.h"

namespace kx {

ObjectList::~ObjectList() { RemoveAll(); }

ObjectList::Node* ObjectList::NodeAt(int32_t position) const {
  if (position < 1 || position > m_count) return nullptr;
  Node* node = m_head;
  for (int32_t i = 1; i < position; ++i) node = node->next;
  return node;
}

ObjectList::Node* ObjectList::NodeWithID(int32_t id) const {
  for (Node* node = m_head; node; node = node->next)
    if (node->object->GetID() == id) return node;
  return nullptr;
}

// Links a new node in front of `successor`, or at the tail when that is null. The cursor
// moves to it.
void ObjectList::LinkBefore(Node* node, Node* successor) {
  node->next = successor;
  node->previous = successor ? successor->previous : m_tail;
  if (node->previous)
    node->previous->next = node;
  else
    m_head = node;
  if (successor)
    successor->previous = node;
  else
    m_tail = node;
  ++m_count;
  m_cursor = node;
}

void ObjectList::Unlink(Node* node) {
  (node->previous ? node->previous->next : m_head) = node->next;
  (node->next ? node->next->previous : m_tail) = node->previous;
  --m_count;
  ReleaseObject(node->object);
  delete node;
  m_cursor = m_head;
}

void ObjectList::Add(BaseObject* object) { Insert(object, -1); }

void ObjectList::Insert(BaseObject* object, int32_t position) {
  if (!object) return;
  Node* successor = position <= 1 && position >= 0 ? m_head : NodeAt(position);
  object->AddRef();
  LinkBefore(new Node{nullptr, nullptr, object, 0}, successor);
}

void ObjectList::InsertSorted(BaseObject* object, int32_t key) {
  if (!object) return;
  Node* successor = m_head;
  while (successor && successor->key <= key) successor = successor->next;
  object->AddRef();
  LinkBefore(new Node{nullptr, nullptr, object, key}, successor);
}

bool ObjectList::Remove(const BaseObject* object) { return object && RemoveByID(object->GetID()); }

bool ObjectList::RemoveByID(int32_t id) {
  Node* node = NodeWithID(id);
  if (!node) return false;
  Unlink(node);
  return true;
}

void ObjectList::RemoveAll() {
  while (m_head) Unlink(m_head);
  m_cursor = nullptr;
}

bool ObjectList::Contains(const BaseObject* object) {
  return object && ContainsID(object->GetID());
}

bool ObjectList::ContainsID(int32_t id) {
  m_cursor = NodeWithID(id);
  return m_cursor != nullptr;
}

BaseObject* ObjectList::AtCursor() {
  if (!m_cursor) return nullptr;
  m_cursor->object->AddRef();
  return m_cursor->object;
}

BaseObject* ObjectList::GetItem(int32_t position) {
  m_cursor = NodeAt(position);
  return AtCursor();
}

BaseObject* ObjectList::FindByID(int32_t id) {
  m_cursor = NodeWithID(id);
  return AtCursor();
}

BaseObject* ObjectList::GetFirst() {
  m_cursor = m_head;
  return AtCursor();
}

BaseObject* ObjectList::GetLast() {
  m_cursor = m_tail;
  return AtCursor();
}

BaseObject* ObjectList::GetNext() {
  if (m_cursor) m_cursor = m_cursor->next;
  return AtCursor();
}

BaseObject* ObjectList::GetPrevious() {
  if (m_cursor) m_cursor = m_cursor->previous;
  return AtCursor();
}

int32_t ObjectList::GetPosition(int32_t id) const {
  int32_t position = 1;
  for (Node* node = m_head; node; node = node->next, ++position)
    if (node->object->GetID() == id) return position;
  return 0;
}

int32_t ObjectList::GetIDAt(int32_t position) const {
  const Node* node = NodeAt(position);
  return node ? node->object->GetID() : 0;
}

void ObjectList::CloseAll() {
  for (Node* node = m_head; node; node = node->next) node->object->Close();
}

}  // namespace kx
