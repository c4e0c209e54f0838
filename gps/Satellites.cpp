#include "gps/Satellites.h"

#include "frame/ErrorNumbers.h"
#include "frame/Ref.h"

namespace kx {

namespace {

int32_t IntegerOf(NmeaSentence& sentence, int32_t index) {
  return sentence.PeekField(index).ToInt();
}

}  // namespace

bool Satellites::Update(NmeaSentence* sentence) {
  if (!sentence) return false;
  switch (sentence->GetType()) {
    case NmeaSentence::kGSV:
      return FromGSV(*sentence);
    case NmeaSentence::kGSA:
      FromGSA(*sentence);
      return false;
    default:
      return false;
  }
}

void Satellites::Close() {
  m_members.RemoveAll();
  m_expected = 1;
}

// The member with this number, or a new one at the end of the list.
Satellite* Satellites::MemberOrNew(int32_t number, bool& isNew) {
  auto* member = static_cast<Satellite*>(m_members.FindByID(number));
  isNew = member == nullptr;
  if (isNew) {
    Ref<Satellite> added(new Satellite(number));
    m_members.Add(added.get());
    member = added.NewReference();
  }
  return member;
}

bool Satellites::FromGSV(NmeaSentence& sentence) {
  if (IntegerOf(sentence, 2) != m_expected) {
    Close();
    return false;
  }
  for (int32_t at = 4; at < sentence.GetFieldCount(); at += 4) {
    const int32_t number = IntegerOf(sentence, at);
    if (number == 0) continue;  // padding
    bool isNew = false;
    Ref<Satellite> member(MemberOrNew(number, isNew));
    member->SetView(int16_t(IntegerOf(sentence, at + 1)), int16_t(IntegerOf(sentence, at + 2)),
                    int16_t(IntegerOf(sentence, at + 3)));
  }
  if (IntegerOf(sentence, 1) == m_expected) return true;
  ++m_expected;
  return false;
}

// Satellites named here before their "GSV" are the ones used for the fix.
void Satellites::FromGSA(NmeaSentence& sentence) {
  for (int32_t at = 3; at <= 14; ++at) {
    const int32_t number = IntegerOf(sentence, at);
    if (number == 0) continue;
    bool isNew = false;
    Ref<Satellite> member(MemberOrNew(number, isNew));
    if (isNew) member->SetUsedForFix(true);
  }
}

Satellite* Satellites::Item(int32_t position) {
  ClearError();
  if (position < 1 || position > GetCount()) {
    SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
    return nullptr;
  }
  return static_cast<Satellite*>(m_members.GetItem(position));
}

}  // namespace kx
