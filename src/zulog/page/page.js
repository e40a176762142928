'use strict';
// Shows the log that follows in the page. The text stays in the document, hidden; only an index of
// its lines is kept here, and only the visible ones have elements of their own. Text from the log
// goes into the document by textContent alone, so markup in it stays text.
(() => {
    document.documentElement.classList.add('scripted');

    const LEVELS = ['Internal Error', 'Fatal Error', 'Error', 'Warning', 'Informational', 'Tracing',
        'Profiling', 'unknown', 'marks'];
    const UNKNOWN_LEVEL = 7;
    const MARK = 8;
    const KINDS = ['event', 'overflow', 'start', 'stop', 'recovery-begin', 'recovery-end',
        'not-written', 'unreadable'];
    const [EVENT, OVERFLOW, START, STOP, RECOVERY_BEGIN, RECOVERY_END, NOT_WRITTEN, UNREADABLE] =
        KINDS.keys();
    const TAB = 9;
    const HEAD_FIELDS = 6;
    const COLUMNS = 6;
    const LEVEL_COLUMN = 3;
    // How many lines before and after the clicked one are shown.
    const NEIGHBOURS = 20;
    const ROW_HEIGHT = 20;
    // Browsers don't make elements as high as wanted.
    const MAX_HEIGHT = 8000000;
    const MAX_CELL = 2000;
    // How long the page does not answer, in milliseconds.
    const SLICE = 30;
    // How often the timeline follows while the log is read.
    const PAUSE = 500;
    // All times are in microseconds since 1970.
    const SECOND = 1000000;
    const MIN_SPAN = 10;

    const element = (id) => document.getElementById(id);
    const make = (name, properties) => Object.assign(document.createElement(name), properties);
    const shown = (number) => number.toLocaleString('en-US');
    const clamp = (value, low, high) => Math.max(low, Math.min(high, value));

    // ---- The index ----

    // Numbers of one kind, for all lines.
    class Column {
        constructor(Numbers) {
            this.data = new Numbers(4096);
            this.length = 0;
        }

        push(value) {
            if (this.length === this.data.length) this.grow();
            this.data[this.length++] = value;
        }

        grow() {
            const larger = new this.data.constructor(this.length * 2);
            larger.set(this.data);
            this.data = larger;
        }
    }

    // Gives numbers to values that recur.
    class Table {
        constructor() {
            this.numbers = new Map();
            this.values = [];
        }

        add(key, makeValue) {
            let number = this.numbers.get(key);
            if (number !== undefined) return number;
            number = this.values.length;
            this.numbers.set(key, number);
            this.values.push(makeValue(number));
            return number;
        }
    }

    // A block is an element with lines; a row is a line of it. A record's first row is its head,
    // and the others continue it.
    const blocks = [];
    const firstRows = [];
    const starts = new Column(Uint32Array);
    const heads = new Column(Uint32Array);
    const times = new Column(Float64Array);
    const levels = new Column(Uint8Array);
    const kinds = new Column(Uint8Array);
    const threadNumbers = new Column(Uint32Array);
    const groupNumbers = new Column(Uint32Array);
    const hits = new Column(Uint8Array);

    const sources = new Map();
    const hosts = new Set();
    const processes = new Table();
    const threads = new Table();
    const groups = new Table();
    const severities = new Map();
    const counts = {records: 0, levels: new Array(LEVELS.length).fill(0),
        kinds: new Array(KINDS.length).fill(0), lost: 0, losses: 0, undated: 0};
    const whole = {from: Infinity, to: -Infinity};
    let lastPiece = null;
    let isRead = false;
    // The tables that the controls show have grown.
    let areChoicesOld = true;

    // "Informational overflow 17"
    function readSeverity(field) {
        const known = severities.get(field);
        if (known) return known;
        const named = LEVELS.findIndex((name) => field === name || field.startsWith(`${name} `));
        const rest = field.slice(named < 0 ? 1 : LEVELS[named].length).trim().split(' ');
        const kind = rest[0] ? KINDS.indexOf(rest[0]) : EVENT;
        const level = kind !== EVENT ? MARK : named < 0 ? UNKNOWN_LEVEL : named;
        const severity = {level, kind, count: Number(rest[1] || 0)};
        severities.set(field, severity);
        return severity;
    }

    let minuteText = '?';
    let minuteTime = 0;

    // "2026-11-22 23:10:51.123456Z"; NaN for anything else.
    function readTime(text, begin, end) {
        if (end - begin !== 27 || text[begin + 4] !== '-') return NaN;
        if (!text.startsWith(minuteText, begin)) {
            minuteText = text.slice(begin, begin + 17);
            minuteTime = Date.parse(`${minuteText.replace(' ', 'T')}00Z`) * 1000;
        }
        return minuteTime + Number(text.slice(begin + 17, begin + 19)) * SECOND +
            Number(text.slice(begin + 20, begin + 26));
    }

    // The number of a thread; `field` is the process and the thread, with a TAB between them.
    function readThread(source, field) {
        let number = source.threads.get(field);
        if (number !== undefined) return number;
        const [process, name] = field.split('\t');
        const {host} = source;
        const owner = processes.add(`${host}\t${process}`, () => ({host, process}));
        number = threads.add(`${host}\t${field}`, () => ({owner, name, hasEvents: false}));
        source.threads.set(field, number);
        areChoicesOld = true;
        return number;
    }

    function readGroup(field) {
        const before = groups.values.length;
        const number = groups.add(field, () => field);
        if (groups.values.length !== before) areChoicesOld = true;
        return number;
    }

    function pushRow(start, head, time, severity, thread, group) {
        starts.push(start);
        heads.push(head);
        times.push(time);
        levels.push(severity.level);
        kinds.push(severity.kind);
        threadNumbers.push(thread);
        groupNumbers.push(group);
        hits.push(0);
    }

    function pushContinuation(start) {
        const before = starts.length - 1;
        const severity = {level: levels.data[before], kind: kinds.data[before]};
        pushRow(start, heads.data[before], times.data[before], severity,
            threadNumbers.data[before], groupNumbers.data[before]);
    }

    function pushRecord(text, begin) {
        const source = text.indexOf('\t', begin) + 1;
        const process = text.indexOf('\t', source) + 1;
        const thread = text.indexOf('\t', process) + 1;
        const level = text.indexOf('\t', thread) + 1;
        const group = text.indexOf('\t', level) + 1;
        const content = text.indexOf('\t', group) + 1;
        const time = readTime(text, begin, source - 1);
        const from = sources.get(text.slice(source, text.indexOf(':', source)));
        const severity = readSeverity(text.slice(level, group - 1));
        pushRow(begin, starts.length, time, severity,
            readThread(from, text.slice(process, level - 1)),
            readGroup(text.slice(group, content - 1)));
        countRecord(starts.length - 1, severity);
    }

    function countRecord(row, severity) {
        const time = times.data[row];
        ++counts.records;
        ++counts.levels[severity.level];
        ++counts.kinds[severity.kind];
        if (severity.kind === EVENT) threads.values[threadNumbers.data[row]].hasEvents = true;
        if (severity.kind === OVERFLOW || severity.kind === NOT_WRITTEN) {
            counts.lost += severity.count;
            ++counts.losses;
        }
        if (Number.isNaN(time)) ++counts.undated;
        whole.from = time < whole.from ? time : whole.from;
        whole.to = time > whole.to ? time : whole.to;
    }

    function readBlock(block) {
        const text = block.textContent;
        blocks.push(block);
        firstRows.push(starts.length);
        // In a page that ends early, the last line may be a part of one.
        const end = text.lastIndexOf('\n') + 1;
        for (let begin = 0; begin < end; ) {
            if (text.charCodeAt(begin) === TAB) pushContinuation(begin);
            else pushRecord(text, begin);
            begin = text.indexOf('\n', begin) + 1;
        }
    }

    function readSource(paragraph) {
        const [number, file, host] = Array.from(paragraph.children, (child) => child.textContent);
        sources.set(number, {file, host, threads: new Map()});
        hosts.add(host);
    }

    // The next element of the log that has come completely.
    function nextPiece() {
        const log = element('log');
        const piece = lastPiece ? lastPiece.nextElementSibling : log && log.firstElementChild;
        const isLoading = document.readyState === 'loading';
        if (!piece && !isLoading) isRead = true;
        const isWhole = piece &&
            (!isLoading || piece.nextElementSibling || log.nextElementSibling);
        return isWhole ? piece : null;
    }

    function readPiece() {
        const piece = nextPiece();
        if (!piece) return false;
        lastPiece = piece;
        if (piece.tagName === 'PRE') readBlock(piece);
        else readSource(piece);
        return true;
    }

    // ---- Lines ----

    // The last place of a sorted list whose value is at most this one; -1 if there is none.
    function findLast(list, length, value) {
        let low = 0;
        let high = length;
        while (low < high) {
            const middle = (low + high) >>> 1;
            if (list[middle] <= value) low = middle + 1;
            else high = middle;
        }
        return low - 1;
    }

    const texts = new Map();

    // The few blocks that are visible are kept as texts.
    function blockText(number) {
        if (!texts.has(number)) {
            if (texts.size > 4) texts.clear();
            texts.set(number, blocks[number].textContent);
        }
        return texts.get(number);
    }

    function rowText(row) {
        const block = findLast(firstRows, firstRows.length, row);
        const text = blockText(block);
        return text.slice(starts.data[row], text.indexOf('\n', starts.data[row]));
    }

    function afterRecord(head) {
        let row = head + 1;
        while (row < starts.length && heads.data[row] === head) ++row;
        return row;
    }

    // The fields of a record's first line, the text being the last one.
    function readFields(line) {
        const fields = [];
        let begin = 0;
        while (fields.length < HEAD_FIELDS) {
            const end = line.indexOf('\t', begin);
            fields.push(line.slice(begin, end));
            begin = end + 1;
        }
        fields.push(line.slice(begin));
        const [time, place, process, thread, severity, group, text] = fields;
        const [source, number] = place.split(':');
        return {time, source: sources.get(source), number, process, thread, severity, group, text};
    }

    // The whole text of a record.
    function recordText(head) {
        const block = findLast(firstRows, firstRows.length, head);
        const text = blockText(block);
        const next = afterRecord(head);
        const isLast = next === starts.length || next === firstRows[block + 1];
        const end = isLast ? text.lastIndexOf('\n') : starts.data[next] - 1;
        return readFields(text.slice(starts.data[head], end)).text.replaceAll('\n\t', '\n');
    }

    // ---- Times ----

    let isLocal = false;
    const padded = (number, width) => String(number).padStart(width, '0');

    // "2026-11-22 23:10:51.123456"
    function timeText(time, local = isLocal) {
        const milliseconds = Math.floor(time / 1000);
        const date = new Date(milliseconds);
        const shift = local ? date.getTimezoneOffset() * 60000 : 0;
        const iso = new Date(milliseconds - shift).toISOString();
        const text = iso.replace('T', ' ').slice(0, -1);
        return text + padded(Math.floor(time - milliseconds * 1000), 3);
    }

    function durationText(span) {
        if (span < 1000) return `${Math.round(span)} us`;
        if (span < SECOND) return `${(span / 1000).toPrecision(4)} ms`;
        if (span < 120 * SECOND) return `${(span / SECOND).toPrecision(4)} s`;
        if (span < 7200 * SECOND) return `${(span / 60 / SECOND).toPrecision(4)} min`;
        return `${shown(Math.round(span / 360 / SECOND) / 10)} h`;
    }

    // ---- Filters ----

    let levelMask = (1 << LEVELS.length) - 1;
    // The value of the control: "" for all, "p3" for a process, "t5" for a thread.
    let wantedThread = '';
    let wantedGroups = null;
    const threadIsWanted = [];
    const groupIsWanted = [];
    let onlyRange = false;
    let onlyHits = false;
    let around = null;
    let query = null;
    let searchedBlocks = 0;

    function acceptsThread(number) {
        const wanted = Number(wantedThread.slice(1));
        if (wantedThread === '') return true;
        if (wantedThread[0] === 't') return number === wanted;
        return threads.values[number].owner === wanted;
    }

    // Both grow while the log is read.
    function completeTables() {
        for (let i = threadIsWanted.length; i < threads.values.length; ++i)
            threadIsWanted.push(acceptsThread(i));
        for (let i = groupIsWanted.length; i < groups.values.length; ++i)
            groupIsWanted.push(!wantedGroups || wantedGroups.test(groups.values[i]));
    }

    // "Data*, UI" as an expression; null if there is nothing in it.
    function readGlobs(text) {
        const globs = text.split(',').map((glob) => glob.trim()).filter((glob) => glob !== '');
        const parts = globs.map((glob) =>
            escaped(glob).replaceAll('\\*', '.*').replaceAll('\\?', '.'));
        return parts.length ? new RegExp(`^(?:${parts.join('|')})$`) : null;
    }

    function escaped(text) {
        return text.replace(/[\\^$.*+?()[\]{}|]/g, '\\$&');
    }

    function acceptsTime(time) {
        if (!onlyRange) return true;
        return isZoomed ? time >= range.from && time <= range.to : !Number.isNaN(time);
    }

    function accepts(row) {
        return (levelMask >> levels.data[row] & 1) === 1 &&
            threadIsWanted[threadNumbers.data[row]] && groupIsWanted[groupNumbers.data[row]] &&
            acceptsTime(times.data[row]) && (!isHitFilter() || hits.data[heads.data[row]] === 1);
    }

    const isHitFilter = () => onlyHits && query !== null;
    const isAround = (row) => around !== null && row >= around.from && row < around.to;

    // The rows that are shown, and up to which row they were chosen.
    const view = new Column(Uint32Array);
    let chosenRows = 0;
    let hitCount = 0;

    function extendView() {
        completeTables();
        const end = isHitFilter() ? searchedRows() : starts.length;
        for (; chosenRows < end; ++chosenRows)
            if (accepts(chosenRows) || isAround(chosenRows)) view.push(chosenRows);
    }

    function rebuildView() {
        const anchor = anchorRow();
        const offset = placeOf(anchor) - first;
        view.length = 0;
        chosenRows = 0;
        extendView();
        first = placeOf(anchor) - offset;
        collectAgain();
        work();
    }

    // The row that keeps its place when others come and go: the selected one if it is visible.
    function anchorRow() {
        const place = placeOf(selected);
        const isVisible = selected >= 0 && place >= first && place < first + pageRows;
        if (isVisible) return selected;
        return view.length ? view.data[clamp(first, 0, view.length - 1)] : 0;
    }

    const placeOf = (row) => Math.max(0, findLast(view.data, view.length, row));

    function filtersChanged() {
        threadIsWanted.length = 0;
        groupIsWanted.length = 0;
        rebuildView();
    }

    // ---- Search ----

    function searchedRows() {
        return searchedBlocks < blocks.length ? firstRows[searchedBlocks] : starts.length;
    }

    function setQuery(text) {
        query = text === '' ? null : new RegExp(escaped(text), 'gi');
        searchedBlocks = 0;
        hits.data.fill(0);
        rebuildView();
    }

    // Where that begins in which is searched: at the group, or at the text if there is no group.
    function contentBegin(text, row) {
        let place = starts.data[row];
        if (heads.data[row] !== row) return place + 1;
        for (let i = 1; i < HEAD_FIELDS; ++i) place = text.indexOf('\t', place) + 1;
        return text.startsWith('-\t', place) ? place + 2 : place;
    }

    function searchBlock(number) {
        const text = blocks[number].textContent;
        const end = number + 1 < blocks.length ? firstRows[number + 1] : starts.length;
        const begins = starts.data.subarray(firstRows[number], end);
        query.lastIndex = 0;
        for (let found = query.exec(text); found; found = query.exec(text)) {
            const row = firstRows[number] + findLast(begins, begins.length, found.index);
            const content = contentBegin(text, row);
            if (found.index < content) {
                query.lastIndex = content;
                continue;
            }
            hits.data[heads.data[row]] = 1;
            const next = afterRecord(heads.data[row]);
            if (next >= end) break;
            query.lastIndex = starts.data[next];
        }
    }

    function isHitHead(row) {
        return hits.data[row] === 1 && heads.data[row] === row;
    }

    function showHits() {
        let before = 0;
        hitCount = 0;
        for (let place = 0; query && place < view.length; ++place) {
            if (!isHitHead(view.data[place])) continue;
            ++hitCount;
            if (view.data[place] <= selected) ++before;
        }
        const isOnHit = selected >= 0 && isHitHead(selected);
        const position = isOnHit ? `${shown(before)} of ` : '';
        const end = searchedBlocks < blocks.length || !isRead ? ' so far' : '';
        element('hits').textContent = query ? `${position}${shown(hitCount)} found${end}` : '';
    }

    // The next row that is shown and of this kind, before (-1) or after (1) the selected one; goes
    // on at the other end.
    function goToNext(direction, isWanted) {
        const length = view.length;
        const isShown = selected >= 0 && view.data[placeOf(selected)] === selected;
        const last = selected >= 0 ? placeOf(selected) : first - 1;
        // What is not shown lies behind the last place before it.
        const begin = isShown || direction > 0 ? last : last + 1;
        for (let step = 1; step <= length; ++step) {
            const place = (begin + direction * step % length + 2 * length) % length;
            if (isWanted(view.data[place])) return select(view.data[place]);
        }
        return undefined;
    }

    const goToHit = (direction) => goToNext(direction, isHitHead);
    const goToMark = (direction) => goToNext(direction,
        (row) => kinds.data[row] !== EVENT && heads.data[row] === row);

    // ---- The visible lines ----

    const grid = element('grid');
    const lines = element('lines');
    const rowsElement = element('rows');
    const rowElements = [];
    let first = 0;
    let pageRows = 1;
    // The head of the selected record.
    let selected = -1;
    let ownScroll = 0;
    let wheelRest = 0;
    let isRenderDue = false;
    // Whether the selected record is to be scrolled to.
    let isRevealDue = false;

    const lastFirst = () => Math.max(0, view.length - pageRows);

    function render() {
        if (isRenderDue) return;
        isRenderDue = true;
        requestAnimationFrame(renderNow);
    }

    function renderNow() {
        isRenderDue = false;
        pageRows = Math.max(1, Math.floor(lines.clientHeight / ROW_HEIGHT));
        if (isRevealDue) reveal();
        first = clamp(Math.round(first), 0, lastFirst());
        rowsElement.style.height = `${lines.clientHeight}px`;
        element('height').style.height = `${spacerHeight()}px`;
        grid.setAttribute('aria-rowcount', view.length + 1);
        renderRows();
        placeScrollBar();
        showHits();
        showStatus();
        if (areChoicesOld && isRead) showChoices();
        if (!isRead) showLevelCounts();
        if (timelineIsOld) drawTimeline();
    }

    // Details that appear leave less room for lines, so this is done once that is known.
    function reveal() {
        isRevealDue = false;
        const place = placeOf(selected);
        if (place < first) first = place;
        if (place >= first + pageRows) first = place - pageRows + 1;
    }

    const spacerHeight = () => Math.min(MAX_HEIGHT, lastFirst() * ROW_HEIGHT);

    function placeScrollBar() {
        const share = lastFirst() === 0 ? 0 : first / lastFirst();
        lines.scrollTop = share * spacerHeight();
        ownScroll = lines.scrollTop;
    }

    function scrolled() {
        if (Math.abs(lines.scrollTop - ownScroll) < 1) return;
        first = lines.scrollTop / Math.max(1, spacerHeight()) * lastFirst();
        render();
    }

    function scrollBy(rows) {
        first = clamp(first + rows, 0, lastFirst());
        render();
    }

    function wheelTurned(event) {
        if (event.ctrlKey) return;
        event.preventDefault();
        const unit = [1, ROW_HEIGHT, pageRows * ROW_HEIGHT][event.deltaMode];
        wheelRest += event.deltaY * unit / ROW_HEIGHT;
        const rows = Math.trunc(wheelRest);
        wheelRest -= rows;
        scrollBy(rows);
    }

    function makeRow() {
        const row = make('div', {id: `row${rowElements.length}`});
        row.setAttribute('role', 'row');
        for (let i = 0; i < COLUMNS; ++i) {
            const cell = make('span');
            cell.setAttribute('role', 'gridcell');
            row.append(cell);
        }
        rowElements.push(row);
        rowsElement.append(row);
    }

    function renderRows() {
        const count = Math.min(pageRows + 1, view.length - first);
        while (rowElements.length < count) makeRow();
        while (rowElements.length > count) rowElements.pop().remove();
        grid.removeAttribute('aria-activedescendant');
        rowElements.forEach((row, i) => renderRow(row, first + i));
    }

    function renderRow(rowElement, place) {
        const row = view.data[place];
        const head = heads.data[row];
        const isSelected = head === selected;
        rowElement.className = rowClass(row);
        rowElement.setAttribute('aria-rowindex', place + 2);
        rowElement.setAttribute('aria-selected', isSelected);
        if (row === selected) grid.setAttribute('aria-activedescendant', rowElement.id);
        const texts = row === head ? headCells(row) : ['', '', '', '', '', rowText(row).slice(1)];
        Array.from(rowElement.children).forEach((cell, i) => {
            cell.className = i === LEVEL_COLUMN ? 'levelName' : '';
            if (i <= LEVEL_COLUMN) cell.textContent = texts[i];
            else putMarked(cell, texts[i].slice(0, MAX_CELL));
        });
    }

    function rowClass(row) {
        const names = ['row', `level${levels.data[row]}`];
        if (isLoss(kinds.data[row])) names.push('loss');
        if (isAround(row)) names.push('near');
        if (heads.data[row] === selected) names.push('selected');
        return names.join(' ');
    }

    const isLoss = (kind) => kind === OVERFLOW || kind === NOT_WRITTEN;

    function headCells(row) {
        const fields = readFields(rowText(row));
        const time = times.data[row];
        const host = hosts.size > 1 ? ` ${fields.source.host}` : '';
        return [Number.isNaN(time) ? fields.time : timeText(time), fields.process + host,
            fields.thread, severityText(row, fields.severity), fields.group, fields.text];
    }

    const severityText = (row, field) =>
        kinds.data[row] === EVENT ? field : KINDS[kinds.data[row]];

    // Puts a text with what was searched for marked.
    function putMarked(cell, text) {
        cell.textContent = '';
        let begin = 0;
        if (query) query.lastIndex = 0;
        for (const found of query ? text.matchAll(query) : []) {
            cell.append(text.slice(begin, found.index), make('mark', {textContent: found[0]}));
            begin = found.index + found[0].length;
        }
        cell.append(text.slice(begin));
    }

    // ---- The selected line ----

    function select(row) {
        selected = row;
        isRevealDue = true;
        showDetails();
        drawAgain();
    }

    function showDetails() {
        const details = element('details');
        details.hidden = selected < 0;
        details.textContent = '';
        if (selected < 0) return;
        const list = make('dl');
        for (const [name, text] of detailsOf(selected)) {
            const entry = make('div');
            entry.append(make('dt', {textContent: name}), make('dd', {textContent: text}));
            list.append(entry);
        }
        details.append(list, make('pre', {textContent: recordText(selected)}));
    }

    function detailsOf(row) {
        const fields = readFields(rowText(row));
        const time = times.data[row];
        const isDated = !Number.isNaN(time);
        return [
            ['UTC', isDated ? timeText(time, false) : '-'],
            ['local', isDated ? timeText(time, true) : '-'],
            ['ticks', isDated || fields.time === '-' ? null : fields.time],
            ['host', fields.source.host], ['process', fields.process], ['thread', fields.thread],
            ['level', fields.severity], ['group', fields.group],
            ['file', `${fields.source.file}:${fields.number}`],
        ].filter((entry) => entry[1] !== null);
    }

    // Shows the records around one, whatever the filters.
    function showAround(record) {
        let from = record;
        let to = afterRecord(record);
        for (let i = 0; i < NEIGHBOURS; ++i) {
            if (from > 0) from = heads.data[from - 1];
            if (to < starts.length) to = afterRecord(to);
        }
        select(record);
        around = {from, to};
        element('around').hidden = false;
        element('aroundText').textContent =
            `The selected line, and ${NEIGHBOURS} before and after it, whatever the filters.`;
        rebuildView();
    }

    function leaveAround() {
        around = null;
        element('around').hidden = true;
        rebuildView();
        grid.focus();
    }

    function unselect() {
        selected = -1;
        showDetails();
        drawAgain();
    }

    function rowClicked(event) {
        const rowElement = event.target.closest('.row');
        if (!rowElement || String(getSelection()) !== '') return;
        const row = view.data[first + rowElements.indexOf(rowElement)];
        showAround(heads.data[row]);
    }

    // Moves by so many rows, but always to the head of another record.
    function moveBy(rows) {
        if (view.length === 0) return;
        const direction = Math.sign(rows);
        const from = selected < 0 ? first - direction : placeOf(selected);
        let place = clamp(from + rows, 0, view.length - 1);
        while (direction > 0 && place < view.length - 1 && !isHead(place)) ++place;
        while (place > 0 && !isHead(place)) --place;
        select(view.data[place]);
    }

    const isHead = (place) => heads.data[view.data[place]] === view.data[place];

    // ---- The timeline ----

    const canvas = element('timeline');
    const LABEL_WIDTH = 150;
    const MARK_HEIGHT = 14;
    const AXIS_HEIGHT = 18;
    const MAX_LANES = 2000;
    // What the timeline shows.
    const range = {from: 0, to: 1};
    let isZoomed = false;
    let timelineIsOld = true;
    // What the timeline shows in its present range; null if that is to be collected again.
    let collection = null;
    let lastCollection = 0;
    let laneHeight = 16;
    let lanes = [];
    let areLanesShared = false;
    let drag = null;

    function drawAgain() {
        timelineIsOld = true;
        render();
    }

    function collectAgain() {
        collection = null;
        drawAgain();
    }

    const hasTimes = () => whole.from <= whole.to;
    const plotWidth = () => Math.max(1, canvas.clientWidth - LABEL_WIDTH);
    const timeAt = (x) =>
        range.from + clamp((x - LABEL_WIDTH) / plotWidth(), 0, 1) * (range.to - range.from);
    const placeAt = (time) =>
        LABEL_WIDTH + (time - range.from) / (range.to - range.from) * plotWidth();

    function showWhole() {
        range.from = whole.from;
        range.to = Math.max(whole.to, whole.from + MIN_SPAN);
        isZoomed = false;
    }

    function setRange(from, to) {
        if (!hasTimes()) return;
        const span = clamp(to - from, MIN_SPAN, Math.max(MIN_SPAN, whole.to - whole.from));
        range.from = clamp(from, whole.from, Math.max(whole.from, whole.to - span));
        range.to = range.from + span;
        isZoomed = span < whole.to - whole.from;
        rangeChanged();
    }

    function rangeChanged() {
        if (onlyRange) rebuildView();
        else collectAgain();
    }

    function zoom(factor, time = (range.from + range.to) / 2) {
        setRange(time - (time - range.from) * factor, time + (range.to - time) * factor);
    }

    function move(share) {
        const distance = share * (range.to - range.from);
        setRange(range.from + distance, range.to + distance);
    }

    function zoomAll() {
        if (!hasTimes()) return;
        showWhole();
        rangeChanged();
    }

    // The threads with events, those of one process beside each other. Returns the lane of each
    // thread; those for which there is no room share the last one.
    function findLanes() {
        const laneOf = new Int32Array(threads.values.length).fill(-1);
        lanes = [...threads.values.keys()].filter((i) => threads.values[i].hasEvents);
        lanes.sort((a, b) => threads.values[a].owner - threads.values[b].owner || a - b);
        lanes.forEach((thread, lane) => { laneOf[thread] = Math.min(lane, MAX_LANES - 1); });
        areLanesShared = lanes.length > MAX_LANES;
        lanes.length = Math.min(lanes.length, MAX_LANES);
        laneHeight = clamp(Math.floor(200 / Math.max(1, lanes.length)), 4, 16);
        return laneOf;
    }

    // What is in each column of pixels of each lane: the most severe level, as 8 - level.
    function collect(width) {
        const laneOf = findLanes();
        const cells = new Uint8Array(lanes.length * width);
        const marks = new Map();
        const scale = (width - 1) / (range.to - range.from);
        for (let row = 0; row < starts.length; ++row) {
            const time = times.data[row];
            if (!(time >= range.from && time <= range.to) || !accepts(row)) continue;
            const x = Math.floor((time - range.from) * scale);
            const kind = kinds.data[row];
            if (kind !== EVENT) {
                marks.set(x * KINDS.length + kind, {x, kind});
                continue;
            }
            const cell = laneOf[threadNumbers.data[row]] * width + x;
            cells[cell] = Math.max(cells[cell], MARK - levels.data[row]);
        }
        lastCollection = performance.now();
        // Losses come last, so that nothing covers them.
        const ordered = [...marks.values()].sort((a, b) => isLoss(a.kind) - isLoss(b.kind));
        return {cells, width, marks: ordered};
    }

    function drawTimeline() {
        timelineIsOld = false;
        if (!hasTimes()) return;
        if (!isZoomed) showWhole();
        collection = collection || collect(Math.floor(plotWidth()));
        const context = beginDrawing();
        drawLabels(context);
        drawCells(context, collection);
        drawMarks(context, collection.marks);
        drawAxis(context);
        drawSelection(context);
        element('range').textContent = `${timeText(range.from)} to ${timeText(range.to)} (` +
            `${durationText(range.to - range.from)})`;
    }

    const plotHeight = () => MARK_HEIGHT + lanes.length * laneHeight;
    let colours = {};

    function readColours() {
        const style = getComputedStyle(document.documentElement);
        const names = ['text', 'quiet', 'line', 'loss', 'restart', 'focus',
            ...LEVELS.map((name, i) => `level${i}`)];
        colours = Object.fromEntries(
            names.map((name) => [name, style.getPropertyValue(`--${name}`).trim()]));
    }

    function beginDrawing() {
        const height = plotHeight() + AXIS_HEIGHT;
        const ratio = window.devicePixelRatio;
        readColours();
        canvas.style.height = `${height}px`;
        canvas.width = Math.round(canvas.clientWidth * ratio);
        canvas.height = Math.round(height * ratio);
        const context = canvas.getContext('2d');
        context.scale(ratio, ratio);
        context.clearRect(0, 0, canvas.clientWidth, height);
        context.font = '11px sans-serif';
        context.textBaseline = 'middle';
        return context;
    }

    function threadText(number) {
        const {owner, name} = threads.values[number];
        const {host, process} = processes.values[owner];
        return hosts.size > 1 ? `${process} ${name} ${host}` : `${process} ${name}`;
    }

    function processText(number) {
        const {host, process} = processes.values[number];
        return hosts.size > 1 ? `${process} ${host}` : process;
    }

    function laneText(lane) {
        const isShared = areLanesShared && lane === MAX_LANES - 1;
        return isShared ? 'further threads' : threadText(lanes[lane]);
    }

    // As many labels as there is room for.
    function drawLabels(context) {
        const step = Math.ceil(12 / laneHeight);
        context.save();
        context.beginPath();
        context.rect(0, 0, LABEL_WIDTH - 4, plotHeight());
        context.clip();
        context.fillStyle = colours.text;
        for (let lane = 0; lane < lanes.length; lane += step)
            context.fillText(laneText(lane), 4, MARK_HEIGHT + (lane + 0.5) * laneHeight);
        context.restore();
    }

    function drawCells(context, {cells, width}) {
        for (let lane = 0; lane < lanes.length; ++lane) {
            const y = MARK_HEIGHT + lane * laneHeight;
            context.fillStyle = colours.line;
            context.fillRect(LABEL_WIDTH, y + laneHeight - 1, width, 0.5);
            drawLane(context, cells.subarray(lane * width, (lane + 1) * width), y);
        }
    }

    function drawLane(context, cells, y) {
        for (let begin = 0; begin < cells.length; ) {
            let end = begin + 1;
            while (end < cells.length && cells[end] === cells[begin]) ++end;
            if (cells[begin] > 0) {
                context.fillStyle = colours[`level${MARK - cells[begin]}`];
                context.fillRect(LABEL_WIDTH + begin, y + 1, end - begin, laneHeight - 2);
            }
            begin = end;
        }
    }

    // Shapes as well as colours tell marks apart.
    function drawMarks(context, marks) {
        for (const {x, kind} of marks) {
            if (kind === UNREADABLE) continue;
            context.fillStyle = isLoss(kind) ? colours.loss : colours.restart;
            context.globalAlpha = 0.5;
            context.fillRect(LABEL_WIDTH + x, MARK_HEIGHT, 1, lanes.length * laneHeight);
            context.globalAlpha = 1;
            drawShape(context, LABEL_WIDTH + x, MARK_HEIGHT / 2, kind);
        }
    }

    function drawShape(context, x, y, kind) {
        context.beginPath();
        if (isLoss(kind)) drawPolygon(context, [[x - 5, y + 5], [x, y - 5], [x + 5, y + 5]]);
        else if (kind === START) context.arc(x, y, 4, 0, 2 * Math.PI);
        else if (kind === STOP) context.rect(x - 4, y - 4, 8, 8);
        else drawPolygon(context, [[x - 5, y], [x, y - 5], [x + 5, y], [x, y + 5]]);
        context.fill();
    }

    function drawPolygon(context, points) {
        for (const [x, y] of points) context.lineTo(x, y);
    }

    // The smallest step of the axis that leaves room for labels.
    function axisStep() {
        const least = (range.to - range.from) / plotWidth() * 110;
        for (let step = 1; step < SECOND; step *= 10)
            for (const factor of [1, 2, 5]) if (step * factor >= least) return step * factor;
        const steps = [1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600,
            43200, 86400];
        for (const step of steps) if (step * SECOND >= least) return step * SECOND;
        const day = 86400 * SECOND;
        return Math.ceil(least / day) * day;
    }

    function axisText(time, step) {
        const text = timeText(time);
        if (step >= 86400 * SECOND) return text.slice(0, 10);
        if (step >= 60 * SECOND) return text.slice(11, 16);
        return step >= SECOND ? text.slice(11, 19) : text.slice(11);
    }

    function drawAxis(context) {
        const step = axisStep();
        const y = plotHeight();
        context.textAlign = 'center';
        for (let time = Math.ceil(range.from / step) * step; time <= range.to; time += step) {
            context.fillStyle = colours.line;
            context.fillRect(placeAt(time), y, 1, 4);
            context.fillStyle = colours.quiet;
            context.fillText(axisText(time, step), placeAt(time), y + 11);
        }
        context.textAlign = 'start';
    }

    // The selected line, and the time that is being dragged over.
    function drawSelection(context) {
        context.fillStyle = colours.focus;
        const time = selected >= 0 ? times.data[selected] : NaN;
        if (time >= range.from && time <= range.to)
            context.fillRect(placeAt(time) - 0.5, 0, 2, plotHeight());
        if (!drag || drag.isMove) return;
        context.globalAlpha = 0.25;
        context.fillRect(Math.min(drag.begin, drag.end), 0, Math.abs(drag.end - drag.begin),
            plotHeight());
        context.globalAlpha = 1;
    }

    function timelineWheel(event) {
        if (event.ctrlKey || !hasTimes()) return;
        event.preventDefault();
        zoom(event.deltaY > 0 ? 1.25 : 0.8, timeAt(event.offsetX));
    }

    function dragBegun(event) {
        if (!hasTimes() || event.button !== 0) return;
        canvas.setPointerCapture(event.pointerId);
        drag = {begin: event.offsetX, end: event.offsetX, isMove: event.shiftKey};
    }

    function dragMoved(event) {
        showThread(event.offsetY);
        if (!drag) return;
        if (drag.isMove) move((drag.end - event.offsetX) / plotWidth());
        drag.end = event.offsetX;
        drawAgain();
    }

    function dragEnded() {
        if (!drag) return;
        const {begin, end, isMove} = drag;
        drag = null;
        drawAgain();
        if (isMove) return;
        if (Math.abs(end - begin) < 4) goToTime(timeAt(end));
        else setRange(timeAt(Math.min(begin, end)), timeAt(Math.max(begin, end)));
    }

    // The thread at this height, as a tooltip.
    function showThread(y) {
        const lane = Math.floor((y - MARK_HEIGHT) / laneHeight);
        canvas.title = lane >= 0 && lane < lanes.length ? laneText(lane) : '';
    }

    function goToTime(time) {
        for (let place = 0; place < view.length; ++place) {
            if (!(times.data[view.data[place]] >= time)) continue;
            select(heads.data[view.data[place]]);
            return;
        }
    }

    // ---- Controls ----

    // What the table at the end of the page says; the marks that were read until it is there.
    function totalOf(name, marks) {
        const totals = element('totals');
        if (!totals) return marks;
        const row = [...totals.rows].find(({cells}) => cells[0].textContent === name);
        return row ? Number(row.cells[1].textContent) : 0;
    }

    function showStatus() {
        const {kinds: kindCounts} = counts;
        const parts = [
            `records: ${shown(counts.records)}, lines: ${shown(starts.length)}, ` +
                `shown: ${shown(view.length)}`,
            `lost events: ${shown(counts.lost)} (in places: ${shown(counts.losses)})`,
            `starts: ${shown(totalOf('processes that started', kindCounts[START]))}, ` +
                `stops: ${shown(totalOf('processes that stopped', kindCounts[STOP]))}, ` +
                `recoveries: ${shown(kindCounts[RECOVERY_BEGIN])}`,
        ];
        if (kindCounts[UNREADABLE]) parts.push(`not readable: ${shown(kindCounts[UNREADABLE])}`);
        if (counts.undated) parts.push(`without a time: ${shown(counts.undated)}`);
        if (!isRead) parts.push('reading on');
        else if (!element('totals')) parts.push('the end of this page is missing');
        element('status').textContent = parts.join('; ');
    }

    function showChoices() {
        areChoicesOld = false;
        const select = element('thread');
        select.textContent = '';
        select.append(make('option', {value: '', textContent: 'all'}));
        for (const owner of processes.values.keys()) showProcess(select, owner);
        select.value = wantedThread;
        element('groups').textContent = '';
        for (const name of [...groups.values].sort())
            if (name !== '-') element('groups').append(make('option', {value: name}));
        showLevelCounts();
    }

    function showProcess(select, owner) {
        const text = `process ${processText(owner)}`;
        select.append(make('option', {value: `p${owner}`, textContent: text}));
        threads.values.forEach((thread, i) => {
            if (thread.owner !== owner || !thread.hasEvents) return;
            select.append(make('option', {value: `t${i}`, textContent: `\u2003${threadText(i)}`}));
        });
    }

    function makeLevels() {
        LEVELS.forEach((name, level) => {
            const box = make('input', {type: 'checkbox', id: `level${level}`, checked: true});
            const count = make('span', {id: `count${level}`});
            const label = make('label', {className: `level${level}`});
            const text = make('span', {className: 'levelName', textContent: ` ${name} `});
            label.append(box, text, count);
            element('levels').append(label);
            box.addEventListener('change', () => {
                levelMask ^= 1 << level;
                filtersChanged();
            });
        });
    }

    function showLevelCounts() {
        counts.levels.forEach((count, level) => {
            element(`count${level}`).textContent = shown(count);
        });
    }

    function zoneChanged() {
        isLocal = element('zone').value === 'local';
        element('timeColumn').textContent = isLocal ? 'Time (local)' : 'Time (UTC)';
        drawAgain();
    }

    // ---- Keys ----

    const lineKeys = {
        ArrowUp: () => moveBy(-1),
        ArrowDown: () => moveBy(1),
        PageUp: () => moveBy(-pageRows),
        PageDown: () => moveBy(pageRows),
        Home: () => moveBy(-view.length),
        End: () => moveBy(view.length),
        Enter: () => { if (selected >= 0) showAround(selected); },
    };

    const timelineKeys = {
        '+': () => zoom(0.5),
        '=': () => zoom(0.5),
        '-': () => zoom(2),
        0: zoomAll,
        ArrowLeft: () => move(-0.2),
        ArrowRight: () => move(0.2),
    };

    const pageKeys = {
        '/': () => element('search').select(),
        n: () => goToHit(1),
        N: () => goToHit(-1),
        m: () => goToMark(1),
        M: () => goToMark(-1),
        t: () => canvas.focus(),
        '?': () => element('helpText').showModal(),
        Escape: goBack,
    };

    function goBack() {
        if (around) leaveAround();
        else if (selected >= 0) unselect();
    }

    function keysFor(target) {
        if (target === canvas) return {...pageKeys, ...timelineKeys};
        if (target === grid || target === document.body) return {...pageKeys, ...lineKeys};
        return pageKeys;
    }

    const isField = (target) =>
        target.tagName === 'SELECT' || (target.tagName === 'INPUT' && target.type !== 'checkbox');

    function keyPressed(event) {
        if (event.ctrlKey || event.altKey || event.metaKey || element('helpText').open) return;
        if (isField(event.target)) {
            if (event.key === 'Escape') leaveField(event);
            return;
        }
        const keys = keysFor(event.target);
        if (!Object.hasOwn(keys, event.key)) return;
        event.preventDefault();
        keys[event.key]();
    }

    // What was typed stays.
    function leaveField(event) {
        event.preventDefault();
        grid.focus();
    }

    function searchKeyPressed(event) {
        if (event.key === 'Enter') goToHit(event.shiftKey ? -1 : 1);
    }

    // ---- Work in slices, so that the page answers meanwhile ----

    let isWorkDue = false;

    function work(pause = 0) {
        if (isWorkDue) return;
        isWorkDue = true;
        setTimeout(workOn, pause);
    }

    function workOn() {
        isWorkDue = false;
        const end = performance.now() + SLICE;
        let hasWorked = false;
        while (performance.now() < end && (readPiece() || searchNext())) hasWorked = true;
        extendView();
        if (hasWorked && (isRead || performance.now() > lastCollection + PAUSE)) collectAgain();
        else render();
        const isDone = isRead && (!query || searchedBlocks === blocks.length);
        document.documentElement.dataset.state = isDone ? 'ready' : 'busy';
        // Without work, more of the page is still to come.
        if (!isDone) work(hasWorked ? 0 : SLICE);
    }

    function searchNext() {
        if (!query || searchedBlocks >= blocks.length) return false;
        searchBlock(searchedBlocks++);
        return true;
    }

    // ---- Start ----

    const on = (id, type, action) => element(id).addEventListener(type, action);

    function connectControls() {
        on('search', 'input', () => setQuery(element('search').value));
        on('search', 'keydown', searchKeyPressed);
        on('next', 'click', () => goToHit(1));
        on('previous', 'click', () => goToHit(-1));
        on('onlyHits', 'change', () => { onlyHits = element('onlyHits').checked; rebuildView(); });
        on('onlyRange', 'change', () => {
            onlyRange = element('onlyRange').checked;
            rebuildView();
        });
        on('group', 'input', () => {
            wantedGroups = readGlobs(element('group').value);
            filtersChanged();
        });
        on('thread', 'change', () => { wantedThread = element('thread').value; filtersChanged(); });
        on('zone', 'change', zoneChanged);
        on('help', 'click', pageKeys['?']);
        on('back', 'click', leaveAround);
        on('zoomIn', 'click', timelineKeys['+']);
        on('zoomOut', 'click', timelineKeys['-']);
        on('zoomAll', 'click', zoomAll);
    }

    function connectTimeline() {
        canvas.addEventListener('wheel', timelineWheel, {passive: false});
        on('timeline', 'pointerdown', dragBegun);
        on('timeline', 'pointermove', dragMoved);
        on('timeline', 'pointerup', dragEnded);
        on('timeline', 'pointercancel', () => { drag = null; });
        on('timeline', 'dblclick', zoomAll);
    }

    function connect() {
        connectControls();
        connectTimeline();
        lines.addEventListener('wheel', wheelTurned, {passive: false});
        lines.addEventListener('scroll', scrolled);
        lines.addEventListener('click', rowClicked);
        lines.addEventListener('focus', () => grid.focus());
        document.addEventListener('keydown', keyPressed);
        new ResizeObserver(collectAgain).observe(lines);
        matchMedia('(prefers-color-scheme: dark)').addEventListener('change', drawAgain);
    }

    element('viewer').hidden = false;
    makeLevels();
    showChoices();
    zoneChanged();
    connect();
    work();
})();
