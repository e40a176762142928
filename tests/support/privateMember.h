// Gives access to a private member of a class, where a rule can't be tested otherwise.

#ifndef ZU_TESTS_PRIVATEMEMBER_H
#define ZU_TESTS_PRIVATEMEMBER_H

namespace support
{

// An explicit instantiation may name private members. A tag in this namespace, with a name that no
// other test uses, defines the type of a pointer to the member and declares the function that
// returns it:
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
