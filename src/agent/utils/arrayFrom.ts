/** The items of a list that is no array, such as a NodeList. */
export default function arrayFrom<Item>(listLike: ArrayLike<Item>): Item[] {
    const items: Item[] = [];
    for (let index = 0; index < listLike.length; index++) {
        items.push(listLike[index]);
    }
    return items;
}
