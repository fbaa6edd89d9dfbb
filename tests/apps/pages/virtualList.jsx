import { useEffect, useState } from "react";
import { createRoot } from "react-dom/client";
import { List } from "react-window";

function Row({ index, style, chosen, choose }) {
    const background = index === chosen ? "red" : "white";
    return (
        <div className="row" style={{ ...style, background }} onClick={() => choose(index)}>
            Row {index}
        </div>
    );
}

function Table() {
    const [chosen, setChosen] = useState(-1);
    useEffect(() => {
        window.app = {
            chosen: () => chosen,
            rowCount: () => document.querySelectorAll(".row").length,
        };
    });
    return (
        <List
            style={{ height: 300 }}
            rowComponent={Row}
            rowCount={100000}
            rowHeight={30}
            rowProps={{ chosen, choose: setChosen }}
        />
    );
}

createRoot(document.getElementById("page")).render(<Table />);
