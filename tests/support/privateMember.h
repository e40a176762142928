// Reaches a private member of a class, where a rule has no other door.

#ifndef ZU_TESTS_PRIVATEMEMBER_H
#define ZU_TESTS_PRIVATEMEMBER_H

namespace support
{

// An explicit instantiation may name what is private. A tag in this namespace, of a name that no
// other test has, says the type of a pointer to the member and declares the function that gives it:
//
//   namespace support
//   {
//   struct IsHidden
//   {
//       using Member = bool (Thing::*)() const;
//       friend Member memberOf(IsHidden);
//   };
//   template struct PrivateMember<IsHidden, &Thing::isHidden>;
//   }
//
//   (thing.*memberOf(support::IsHidden()))()
template <class Tag, typename Tag::Member MEMBER> struct PrivateMember
{
    friend typename Tag::Member memberOf(Tag)
    {
        return MEMBER;
    }
};

} // namespace support

#endif
