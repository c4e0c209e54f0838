// A doubly linked list of counted objects with an inner cursor. Positions are 1-based
// and objects are found by their ID; the first match from the head wins. Not locked:
// its owner guards it.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"

namespace kx {

class ObjectList : public BaseObject {
 public:
  ObjectList() = default;
  ~ObjectList() override;

  // All of these take a reference of the list's own; a null object is ignored.
  void Add(BaseObject* object);
  // In front of the object at `position`; 0 or 1 at the head, beyond the end or negative
  // at the tail.
  void Insert(BaseObject* object, int32_t position);
  // In front of the first node with a greater key: equal keys keep their arrival order.
  void InsertSorted(BaseObject* object, int32_t key);

  bool Remove(const BaseObject* object);
  bool RemoveByID(int32_t id);
  void RemoveAll();
  void Close() override { RemoveAll(); }

  int32_t GetCount() const { return m_count; }
  bool Contains(const BaseObject* object);
  bool ContainsID(int32_t id);
  // The object with a reference for the caller, or null.
  BaseObject* GetItem(int32_t position);
  BaseObject* FindByID(int32_t id);
  BaseObject* GetFirst();
  BaseObject* GetLast();
  BaseObject* GetNext();
  BaseObject* GetPrevious();
  // 1-based position of the first object with that ID; 0 if none.
  int32_t GetPosition(int32_t id) const;
  // The ID of the object at `position`; 0 if none.
  int32_t GetIDAt(int32_t position) const;
  // Closes every object and keeps it in the list.
  void CloseAll();

 private:
  struct Node {
    Node* next;
    Node* previous;
    BaseObject* object;
    int32_t key;
  };

  Node* NodeAt(int32_t position) const;
  Node* NodeWithID(int32_t id) const;
  void LinkBefore(Node* node, Node* successor);
  void Unlink(Node* node);
  BaseObject* AtCursor();

  Node* m_head = nullptr;
  Node* m_tail = nullptr;
  Node* m_cursor = nullptr;
  int32_t m_count = 0;
};

}  // namespace kx
