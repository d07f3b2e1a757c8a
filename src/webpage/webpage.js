'use strict';
(() => {
  const labels = [...document.querySelectorAll('a.label')];
  const rows = [...document.querySelectorAll('.finding')];
  const filter = document.getElementById('filter');
  const count = document.getElementById('count');
  const numberOf = (element) => element.id.slice(element.id.indexOf('-') + 1);
  const labelOf = (row) => document.getElementById('label-' + numberOf(row));
  const rowOf = (label) => document.getElementById('row-' + numberOf(label));
  const linkOf = (row) => row.querySelector('a');
  const isShown = (row) => !row.hidden;

  // One tab stop for the labels of each page and one for the list; arrow keys do the rest.
  const labelGroups = [...document.querySelectorAll('.sheet')]
    .map((sheet) => [...sheet.querySelectorAll('a.label')]);
  const rowLinks = rows.map(linkOf).filter(Boolean);
  const groups = [...labelGroups, rowLinks];
  const isReachable = (link) =>
    link.matches('.label') ? !link.matches('.out') : isShown(link.closest('.finding'));
  const setTabStops = () => {
    for (const group of groups) {
      const reachable = group.filter(isReachable);
      const stop = reachable.find((link) => link.hasAttribute('aria-current')) || reachable[0];
      for (const link of group)
        link.setAttribute('tabindex', link === stop ? '0' : '-1');
    }
  };

  let chosen = null;
  const mark = (row, isChosen) => {
    row.classList.toggle('chosen', isChosen);
    for (const link of [linkOf(row), labelOf(row)]) {
      if (link && isChosen)
        link.setAttribute('aria-current', 'true');
      else if (link)
        link.removeAttribute('aria-current');
    }
  };
  const choose = (row) => {
    if (chosen)
      mark(chosen, false);
    chosen = row;
    if (chosen)
      mark(chosen, true);
    setTabStops();
  };
  const scrollList = (row) => row.scrollIntoView({block: 'nearest'});
  // Where pages and list are stacked, a click on a label must not lead away from the page.
  const isBeside = () => matchMedia('(min-width: 52rem)').matches;
  const chooseLabel = (label) => {
    choose(rowOf(label));
    if (isBeside())
      scrollList(chosen);
    showCard();
  };
  const chooseRow = (row) => {
    choose(row);
    showCard();
    const label = labelOf(row);
    if (label)
      label.scrollIntoView({block: 'center', inline: 'nearest'});
  };

  // Where pages and list are stacked, a card repeats the chosen row beside the page.
  const card = document.getElementById('card');
  const showCard = () => {
    card.replaceChildren();
    card.hidden = !chosen;
    if (!chosen)
      return;
    const headings = [...document.querySelectorAll('thead th')];
    [...chosen.cells].forEach((cell, column) => {
      if (!cell.textContent)
        return;
      const name = document.createElement('dt');
      const text = document.createElement('dd');
      name.textContent = headings[column].textContent;
      text.textContent = cell.textContent;
      text.dir = 'auto';
      card.append(name, text);
    });
  };

  document.addEventListener('click', (event) => {
    if (event.target.closest('.page-row, .thumbnail'))
      return;
    const label = event.target.closest('a.label');
    const row = event.target.closest('.finding');
    if (event.target.closest('.sheet') && !label) {
      choose(null);
      showCard();
      return;
    }
    // A row whose text is being selected is not clicked.
    if (!label && (!row || getSelection().toString()))
      return;
    event.preventDefault();
    if (label)
      chooseLabel(label);
    else
      chooseRow(row);
  });

  const moves = {ArrowDown: 1, ArrowRight: 1, ArrowUp: -1, ArrowLeft: -1};
  document.addEventListener('keydown', (event) => {
    if (event.key === 'Escape') {
      choose(null);
      showCard();
      return;
    }
    const link = event.target.closest('a.label, .finding a');
    if (!link || event.altKey || event.ctrlKey || event.metaKey)
      return;
    const group = groups.find((links) => links.includes(link)).filter(isReachable);
    const place = group.indexOf(link);
    let next = null;
    if (event.key in moves)
      next = group[place + moves[event.key]];
    else if (event.key === 'Home')
      next = group[0];
    else if (event.key === 'End')
      next = group[group.length - 1];
    else
      return;
    event.preventDefault();
    if (!next)
      return;
    next.focus({preventScroll: true});
    if (next.matches('.label')) {
      chooseLabel(next);
      next.scrollIntoView({block: 'nearest'});
    } else {
      chooseRow(next.closest('.finding'));
      scrollList(chosen);
    }
  });

  const texts = rows.map((row) =>
    [...row.cells, row.parentElement.querySelector('.page-row')]
      .map((cell) => cell.textContent).join(' ').toLowerCase());
  const applyFilter = () => {
    const words = filter.value.toLowerCase().split(/\s+/).filter(Boolean);
    let shown = 0;
    rows.forEach((row, place) => {
      row.hidden = !words.every((word) => texts[place].includes(word));
      shown += row.hidden ? 0 : 1;
      const label = labelOf(row);
      if (label)
        label.classList.toggle('out', row.hidden);
    });
    for (const body of document.querySelectorAll('tbody'))
      body.hidden = ![...body.querySelectorAll('.finding')].some(isShown);
    count.textContent = count.dataset.text.replace('%1', shown).replace('%2', rows.length);
    if (chosen && chosen.hidden) {
      choose(null);
      showCard();
    }
    setTabStops();
  };
  filter.addEventListener('input', applyFilter);
  filter.closest('label').hidden = rows.length === 0;
  applyFilter();

  // Marks the thumbnail of the page in the middle of the window.
  const thumbnails = [...document.querySelectorAll('.thumbnail')];
  const observer = new IntersectionObserver((entries) => {
    for (const entry of entries) {
      const thumbnail = thumbnails.find((link) => link.hash === '#' + entry.target.id);
      if (entry.isIntersecting)
        thumbnail.setAttribute('aria-current', 'true');
      else
        thumbnail.removeAttribute('aria-current');
    }
  }, {rootMargin: '-50% 0px -50% 0px'});
  document.querySelectorAll('.page').forEach((page) => observer.observe(page));

  // A link to "report.html#label-7" or "#row-7" chooses the label.
  const followHash = () => {
    const target = document.getElementById(location.hash.slice(1));
    const row = target && (target.matches('a.label') ? rowOf(target) : target.closest('.finding'));
    if (row) {
      chooseRow(row);
      scrollList(row);
    }
  };
  addEventListener('hashchange', followHash);
  followHash();
})();
