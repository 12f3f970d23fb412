// Adds a search field to the header. It finds pages, their sections, classes and functions by parts of their names.
const mostResults = 12;

function matches(title, words) {
    const lowered = title.toLowerCase();
    return words.every(word => lowered.includes(word));
}

function link([title, address]) {
    const item = document.createElement("li");
    const anchor = document.createElement("a");
    anchor.href = address;
    anchor.textContent = title;
    item.append(anchor);
    return item;
}

function addSearch(header) {
    const field = document.createElement("input");
    field.type = "search";
    field.placeholder = "Search";
    field.setAttribute("aria-label", "Search the documentation");
    const results = document.createElement("ul");
    const box = document.createElement("div");
    box.className = "search";
    box.append(field, results);
    header.append(box);

    field.addEventListener("input", () => {
        const words = field.value.toLowerCase().split(/\s+/).filter(word => word);
        const found = words.length ? entries.filter(([title]) => matches(title, words)) : [];
        found.sort(([a], [b]) => a.length - b.length); // the closest match first
        results.replaceChildren(...found.slice(0, mostResults).map(link));
    });
    field.addEventListener("keydown", event => {
        if (event.key === "Enter")
            results.querySelector("a")?.click();
        else if (event.key === "Escape")
            results.replaceChildren();
    });
}

addSearch(document.querySelector("header"));
